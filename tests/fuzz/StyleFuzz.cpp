// Styles and their fields by name: the first line is a document, every further one a change as `--set` and
// `--text` take it.

#include <cstdlib>

#include <QList>

#include "base/Json.h"
#include "cli/Console.h"
#include "cli/StyleEdit.h"
#include "model/FrameSettingsJson.h"

using namespace tarnovel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    const QByteArray input(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(count));
    const QList<QByteArray> lines = input.split('\n');
    FrameSettings settings;
    try {
        const Json document = parseJson(lines.first());
        bool whole = true;
        salvageFrameSettings(JsonReader(document), whole);
        settings = frameSettingsFromJson(JsonReader(document));
    } catch (const JsonError &) {
    }
    for (const QByteArray &line : lines.mid(1)) {
        for (const auto change : {cli::StyleEdit::set, cli::StyleEdit::setText}) {
            try {
                change(settings, QString::fromUtf8(line));
            } catch (const cli::UsageError &) {
            }
        }
    }
    const Json written = toJson(settings);
    if (toJson(frameSettingsFromJson(JsonReader(written))) != written) {
        std::abort();
    }
    return 0;
}
