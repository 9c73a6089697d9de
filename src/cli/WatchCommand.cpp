#include "cli/WatchCommand.h"

#include <QDir>
#include <QFileInfo>

#include "cli/BatchRun.h"
#include "cli/ExportCommand.h"
#include "cli/FolderWatch.h"
#include "cli/Interruption.h"
#include "cli/OutputOptions.h"
#include "cli/WorkerPool.h"
#include "language/AppLanguage.h"
#include "language/FieldPattern.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

QString folderOf(const ExportRequest &request)
{
    const QStringList &given = request.selection.photos;
    if (given.size() != 1) {
        throw UsageError{
            localized({"watch 需要一个文件夹。", "watch takes one folder.", "watch prend un seul dossier."})};
    }
    if (isSameFolder(given.first(), request.folder)) {
        throw UsageError{ownFolderText() + given.first()};
    }
    if (!QFileInfo(given.first()).isDir()) {
        throw Refusal{given.first(), localized({"没有这个文件夹。", "There is no such folder.",
                                                "Ce dossier n’existe pas."})};
    }
    return given.first();
}

int watchFolder(const ExportRequest &request, const Interruption &interruption)
{
    const QString folder = folderOf(request);
    const FieldPattern pattern = namePattern(request);
    if (pattern.uses(FieldPattern::Field::Number) || pattern.uses(FieldPattern::Field::Count)) {
        throw UsageError{localized(
            {"watch 的文件名不能用 {n} 和 {count}：照片陆续到来，没有固定的位置。",
             "watch takes no {n} and no {count} in names: photos come one by one, and have no place in a "
             "list.",
             "watch n’accepte ni {n} ni {count} dans les noms : les photos arrivent une à une, sans rang."})};
    }
    const TemporaryFolder temporary;
    ImagePipeline pipeline(QDir::currentPath(), temporary.path(), PipelineUse::Command);
    // The photo at hand is finished after an interruption: nothing here is stopped by it.
    const Styler styler(request.style, pipeline, {});
    warn(request, &styler);
    makeFolder(request.folder);
    const PhotoSource source(pipeline, styler, {});
    const int workers = workersFor(request.jobs.value_or(u"1"_s), std::numeric_limits<int>::max());
    const std::unique_ptr<PhotoMaker> maker = makerFor(request, workers, source, temporary.path(), {});
    BatchOutput output = outputFor(request);
    output.skipExisting = true;
    output.keepsNames = true;
    output.quiet = true;
    BatchRun run(output, source, *maker);
    FolderWatch watch(folder, request.selection.recursive, QFileInfo(request.folder).canonicalFilePath());
    int index = 0;
    while (!interruption.token().stop_requested() && !run.deaf()) {
        for (const QString &photo : watch.next(interruption.token())) {
            if (interruption.token().stop_requested() || run.deaf()) {
                break;
            }
            const PhotoJob job{index++, photo, {}};
            run.take(job, QFileInfo(photo).completeBaseName(), source.templateOf(job), BatchRun::Whose::Ours);
        }
        run.finish();
    }
    return run.deaf() ? 1 : 0;
}

} // namespace

int runWatch(const ExportRequest &request, const Interruption &interruption)
{
    checkOptions(request);
    try {
        return watchFolder(request, interruption);
    } catch (const Refusal &refusal) {
        Console::complain(refusal.what, refusal.message);
        return 1;
    }
}

} // namespace tarnovel::cli
