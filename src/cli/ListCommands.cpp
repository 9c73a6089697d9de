#include "cli/ListCommands.h"

#include <cmath>

#include <QDir>
#include <QFileInfo>

#include "base/Cancellation.h"
#include "base/Json.h"
#include "cli/Console.h"
#include "cli/FailureCode.h"
#include "cli/Interruption.h"
#include "film/FilmStockCatalog.h"
#include "language/AppLanguage.h"
#include "pipeline/ImagePipeline.h"
#include "pipeline/PipelineError.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

/// A row of a list: an object's line of JSON, or its values in columns.
int printTable(const QList<QList<std::pair<const char *, QString>>> &rows, bool json)
{
    QList<QStringList> columns;
    for (const auto &row : rows) {
        Json object;
        columns.append(QStringList());
        for (const auto &[key, value] : row) {
            object[key] = jsonText(value);
            columns.last().append(value);
        }
        if (json && !Console::print(QString::fromUtf8(writeJson(object)))) {
            return 1;
        }
    }
    return json ? 0 : printColumns(columns);
}

Json inspectionJson(const QString &photo, const PhotoItem &item, const QList<Ink> &palette)
{
    Json line;
    line["photo"] = jsonText(photo);
    line["name"] = jsonText(item.name);
    line["width"] = static_cast<qint64>(item.width);
    line["height"] = static_cast<qint64>(item.height);
    for (const char *id : {"brand", "model", "exif", "date"}) {
        line[id] = jsonText(item.settings.layer(QString::fromLatin1(id))->text);
    }
    line["palette"] = Json::array();
    for (const Ink &ink : palette) {
        line["palette"].push_back({ink.r, ink.g, ink.b});
    }
    return line;
}

QString inspectionText(const QString &photo, const PhotoItem &item, const QList<Ink> &palette)
{
    QStringList parts = {u"%1 × %2"_s.arg(item.width).arg(item.height)};
    for (const char *id : {"brand", "model", "exif", "date"}) {
        const QString text = item.settings.layer(QString::fromLatin1(id))->text;
        if (!text.isEmpty()) {
            parts.append(text);
        }
    }
    for (const Ink &ink : palette) {
        const auto hex = [](double value) {
            return u"%1"_s.arg(static_cast<int>(std::lround(value * 255)), 2, 16, QChar(u'0')).toUpper();
        };
        parts.append(u'#' + hex(ink.r) + hex(ink.g) + hex(ink.b));
    }
    return Console::escaped(photo) + u": "_s + parts.join(u", "_s);
}

} // namespace

int printColumns(const QList<QStringList> &rows)
{
    QList<qsizetype> widths(rows.isEmpty() ? 0 : rows.first().size());
    for (const QStringList &row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths.at(i), row.at(i).size());
        }
    }
    for (const QStringList &row : rows) {
        QString line;
        for (qsizetype i = 0; i < row.size(); ++i) {
            line += i + 1 == row.size() ? row.at(i) : row.at(i).leftJustified(widths.at(i) + 2);
        }
        if (!Console::print(line)) {
            return 1;
        }
    }
    return 0;
}

int runInspect(const QStringList &photos, bool json, const Interruption &interruption)
{
    ImagePipeline pipeline(QDir::currentPath(), QDir::tempPath(), PipelineUse::Command);
    int status = 0;
    try {
        for (const QString &photo : photos) {
            try {
                const QString path = QFileInfo(photo).absoluteFilePath();
                const PhotoItem item =
                    pipeline.inspect({path}, ImagePipeline::TestDecode::No, interruption.token()).result();
                const QList<Ink> palette = pipeline.primaryColors(path, interruption.token()).result();
                const QString line = json ? QString::fromUtf8(writeJson(inspectionJson(photo, item, palette)))
                                          : inspectionText(photo, item, palette);
                if (!Console::print(line)) {
                    return 1;
                }
            } catch (const PipelineFailure &failure) {
                const QString message = errorDescription(failure);
                if (json) {
                    Console::print(
                        QString::fromUtf8(writeJson(Json{{"photo", jsonText(photo)},
                                                         {"error", jsonText(message)},
                                                         {"code", jsonText(failureCode(failure))}})));
                }
                Console::complain(photo, message);
                status = 1;
            }
        }
    } catch (const OperationCancelled &) {
        return interruption.exitStatus();
    }
    return status;
}

int runTemplates(bool json)
{
    QList<QList<std::pair<const char *, QString>>> rows;
    for (const BuiltInTemplate look : BuiltInTemplates::all()) {
        rows.append({{"id", BuiltInTemplates::id(look)}, {"title", BuiltInTemplates::title(look)}});
    }
    return printTable(rows, json);
}

int runStocks(bool json)
{
    QList<QList<std::pair<const char *, QString>>> rows;
    for (const FilmStock &stock : FilmStockCatalog::available()) {
        rows.append({{"brand", stock.brand}, {"name", stock.name}, {"marking", stock.marking}});
    }
    return printTable(rows, json);
}

} // namespace tarnovel::cli
