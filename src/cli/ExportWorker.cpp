#include "cli/ExportWorker.h"

#include <csignal>
#include <optional>

#include <sys/prctl.h>

#include <QDir>

#include "base/ChildProcess.h"
#include "base/FileError.h"
#include "cli/Console.h"
#include "cli/ExportCommand.h"
#include "cli/FailureCode.h"
#include "cli/WorkerPool.h"
#include "model/LibraryPaths.h"
#include "pipeline/PipelineError.h"

namespace tarnovel::cli {

namespace {

constexpr int parentSocket = ChildProcess::socketOfChild;

MadePhoto made(const QByteArray &job, const QList<WantedSize> &sizes, LocalMaker &maker)
{
    QStringList warnings;
    Console::divert(&warnings);
    maker.begin(WorkerMessages::decodedJob(job, sizes));
    MadePhoto photo = maker.next();
    Console::divert(nullptr);
    photo.warnings = warnings;
    // The program takes them over, and removes what it does not publish.
    for (MadeSize &size : photo.sizes) {
        if (size.owner) {
            size.owner->keep();
        }
    }
    return photo;
}

QByteArray answerTo(const QByteArray &job, const QList<WantedSize> &sizes, LocalMaker &maker,
                    const QString &folder)
{
    const MadePhoto photo = made(job, sizes, maker);
    try {
        return WorkerMessages::encoded(photo, folder);
    } catch (const FileError &error) {
        return WorkerMessages::encoded(
            MadePhoto::failed(folder + QStringLiteral(": ") + errorDescription(error), failureCode(error)),
            folder);
    }
}

int serve(const PhotoSource &source, const QList<WantedSize> &sizes, const QString &folder)
{
    LocalMaker maker(source);
    sendMessage(parentSocket, WorkerMessages::ready);
    for (;;) {
        ReceivedMessage job;
        if (receiveMessage(parentSocket, job) != Receiving::Message) {
            return 0;
        }
        sendMessage(parentSocket, WorkerMessages::begun);
        if (!sendMessage(parentSocket, answerTo(job.bytes, sizes, maker, folder))) {
            return 0;
        }
    }
}

} // namespace

int runExportWorker(const ExportRequest &request)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const QList<WantedSize> sizes = wantedSizes(request);
    const QString library = request.session ? LibraryPaths::location() : QDir::currentPath();
    ImagePipeline pipeline(library, request.folder, PipelineUse::Worker);
    if (request.session) {
        return serve(PhotoSource(pipeline, itemsFrom(request.itemsFile), {}), sizes, request.folder);
    }
    const Styler styler(request.style, pipeline, {});
    return serve(PhotoSource(pipeline, styler, {}), sizes, request.folder);
}

} // namespace tarnovel::cli
