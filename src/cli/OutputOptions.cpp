#include "cli/OutputOptions.h"

#include <QDir>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "cli/Console.h"
#include "language/AppLanguage.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

void setFormat(ExportOptions &options, const QString &format, const std::optional<QString> &maxMb)
{
    if (format != u"jpeg"_s && format != u"png"_s) {
        throw UsageError{localized({"--format 应为 jpeg 或 png：",
                                    "--format takes jpeg or png: ", "--format prend jpeg ou png : "}) +
                         format};
    }
    options.png = format == u"png"_s;
    if (maxMb) {
        bool number = false;
        const double limit = maxMb->toDouble(&number);
        if (!number || !(limit > 0)) {
            throw UsageError{localized({"--max-mb 应为大于零的数：", "--max-mb takes a number above zero: ",
                                        "--max-mb prend un nombre positif : "}) +
                             *maxMb};
        }
        options.maxMB = options.png ? 0 : limit;
    }
}

QString unreadablePicture()
{
    return localized({"无法读取这张图片，请尝试 JPEG、HEIC 或 PNG。",
                      "Cannot read this picture. Try JPEG, HEIC or PNG.",
                      "Impossible de lire cette image. Essayez JPEG, HEIC ou PNG."});
}

TemporaryFolder::TemporaryFolder()
{
    try {
        m_folder = std::make_unique<ScratchFolder>(u"tarnovel-run-"_s);
    } catch (const FileError &error) {
        throw Refusal{error.path(),
                      localized({"无法在这里建立临时文件夹：", "Cannot make a temporary folder here: ",
                                 "Impossible de créer un dossier temporaire ici\u202f: "}) +
                          errorDescription(error)};
    }
}

void makeFolder(const QString &folder)
{
    if (QFileInfo(folder).isDir() || QDir().mkpath(folder)) {
        sweepTemporaryFiles(folder);
        return;
    }
    const bool taken = QFileInfo(folder).exists();
    throw Refusal{folder, taken ? localized({"这里有一个同名文件，无法建立文件夹。",
                                             "A file stands where the folder should be.",
                                             "Un fichier occupe la place du dossier."})
                                : localized({"无法建立这个文件夹。", "Cannot make this folder.",
                                             "Impossible de créer ce dossier."})};
}

} // namespace tarnovel::cli
