#include "cli/ExportCommand.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include <QDir>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/FileError.h"
#include "base/Json.h"
#include "cli/BatchRun.h"
#include "cli/Console.h"
#include "cli/FailureCode.h"
#include "cli/Interruption.h"
#include "cli/OutputOptions.h"
#include "cli/WorkerPool.h"
#include "language/AppLanguage.h"
#include "model/LibraryPaths.h"
#include "model/SessionStore.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

WantedSize sizeFrom(const QString &typed)
{
    WantedSize size;
    size.name = typed;
    if (typed == u"original"_s) {
        size.options.fullResolution = true;
        return size;
    }
    bool whole = false;
    const int edge = typed.toInt(&whole);
    const bool digits = std::ranges::all_of(typed, [](QChar each) { return each >= u'0' && each <= u'9'; });
    if (!whole || !digits || edge < ExportOptions::shortestLongEdge ||
        edge > ExportOptions::longestLongEdge) {
        throw UsageError{localized({"--size 应为 1080、original 或 720 到 8192 的像素数：",
                                    "--size takes 1080, original or 720 to 8192 pixels: ",
                                    "--size prend 1080, original ou de 720 à 8192 pixels : "}) +
                         typed};
    }
    size.options.longEdge = edge;
    return size;
}

Session storedSession()
{
    const QString library = LibraryPaths::location();
    const LoadedSession loaded = loadSession(library, LibraryAccess::ReadOnly);
    const QString document = library + u'/' + LibraryPaths::sessionFileName();
    if (!loaded.decoded && QFileInfo::exists(document)) {
        throw Refusal{document, localized({"无法读取保存的编辑。", "Cannot read the stored session.",
                                           "Impossible de lire la session enregistrée."})};
    }
    if (loaded.session.photos.isEmpty()) {
        throw Refusal{document, localized({"没有保存的照片。", "There are no stored photos.",
                                           "Aucune photo enregistrée."})};
    }
    return loaded.session;
}

void checkSession(const ExportRequest &request)
{
    if (!request.selection.isEmpty() || !request.style.isEmpty()) {
        throw UsageError{localized(
            {"--session 按保存的样式导出保存的照片，不能再指定照片或样式。",
             "--session exports the stored photos in their stored styles; it takes no photo and no style.",
             "--session exporte les photos enregistrées avec leurs styles ; ni photo ni style en plus."})};
    }
}

/// What the photos of a run are called, and which of them are its own.
struct Batch {
    PhotoList photos;
    /// Of a session, instead of files.
    QList<PhotoItem> items;
    Shard shard;

    int count() const { return static_cast<int>(items.isEmpty() ? photos.size() : items.size()); }
    int ours() const { return static_cast<int>(shard.count(count())); }
    PhotoJob job(int index) const
    {
        return {index, items.isEmpty() ? photos.at(index) : items.at(index).name, {}};
    }
    QString name(const PhotoJob &job) const
    {
        return items.isEmpty() ? QFileInfo(job.photo).completeBaseName() : job.photo;
    }
};

QStringList workerArguments(const ExportRequest &request, const QString &temporary, const QString &items)
{
    QStringList arguments = {u"export-worker"_s, u"--output="_s + temporary, u"--format="_s + request.format,
                             u"--language="_s + languageCode(currentLanguage())};
    for (const QString &size : request.sizes) {
        arguments.append(u"--size="_s + size);
    }
    if (request.maxMb) {
        arguments.append(u"--max-mb="_s + *request.maxMb);
    }
    if (request.session) {
        arguments += {u"--session"_s, u"--items="_s + items};
    }
    if (request.verbose) {
        arguments.append(u"--verbose"_s);
    }
    return arguments + request.style.arguments();
}

/// The photos of the session as they are now, for the workers.
QString writtenItems(const Batch &batch, const QString &temporary)
{
    const QString path = temporary + u"/items.json"_s;
    Session session;
    session.photos = batch.items;
    replaceFile(path, writeSession(session), Durability::Unsynced);
    return path;
}

void runThrough(BatchRun &run, const Batch &batch, const PhotoSource &source)
{
    for (const QString &folder : batch.photos.emptyFolders()) {
        run.reportFailure(folder,
                          localized({"这个文件夹里没有照片。", "There are no photos in this folder.",
                                     "Il n’y a pas de photo dans ce dossier."}),
                          u"missing"_s);
    }
    for (const QString &folder : batch.photos.closedFolders()) {
        const FileError closed(folder, EACCES, FileAccess::Read);
        run.reportFailure(folder, errorDescription(closed), failureCode(closed));
    }
    for (int index = 0; index < batch.count() && !run.deaf(); ++index) {
        const PhotoJob job = batch.job(index);
        run.take(job, batch.name(job), source.templateOf(job),
                 batch.shard.has(index) ? BatchRun::Whose::Ours : BatchRun::Whose::Others);
    }
    run.finish();
}

int runBatch(const ExportRequest &request, const Batch &batch, const Interruption &interruption)
{
    const int workers = workersFor(request.jobs, batch.ours());
    BatchOutput output = outputFor(request);
    output.count = batch.count();
    output.ours = batch.ours();
    const TemporaryFolder temporary;
    const QString library = request.session ? LibraryPaths::location() : QDir::currentPath();
    ImagePipeline pipeline(library, temporary.path(), PipelineUse::Command);
    std::unique_ptr<Styler> styler;
    if (!request.session) {
        styler = std::make_unique<Styler>(request.style, pipeline, interruption.token());
    }
    warn(request, styler.get());
    if (!request.dryRun) {
        makeFolder(request.folder);
    }
    const PhotoSource source = styler ? PhotoSource(pipeline, *styler, interruption.token())
                                      : PhotoSource(pipeline, batch.items, interruption.token());
    const QString items = request.session && workers > 1 ? writtenItems(batch, temporary.path()) : QString();
    const std::unique_ptr<PhotoMaker> maker =
        makerFor(request, request.dryRun ? 1 : workers, source, temporary.path(), items);
    BatchRun run(output, source, *maker);
    runThrough(run, batch, source);
    return run.status();
}

Batch batchFrom(const ExportRequest &request)
{
    Batch batch;
    if (request.shard) {
        batch.shard = Shard::from(*request.shard);
    }
    if (request.session) {
        checkSession(request);
        batch.items = storedSession().photos;
    } else if (request.selection.isEmpty()) {
        throw UsageError{localized({"没有指定照片。", "No photo is named.", "Aucune photo indiquée."})};
    } else {
        batch.photos = PhotoList(request.selection, request.folder);
    }
    return batch;
}

} // namespace

QList<WantedSize> wantedSizes(const ExportRequest &request)
{
    QList<WantedSize> sizes;
    for (const QString &typed : request.sizes.isEmpty() ? QStringList{u"4096"_s} : request.sizes) {
        WantedSize size = sizeFrom(typed);
        setFormat(size.options, request.format, request.maxMb);
        if (std::ranges::find(sizes, size.options, &WantedSize::options) == sizes.end()) {
            sizes.append(size);
        }
    }
    if (sizes.size() > ImagePipeline::mostSizes) {
        throw UsageError{localized({"--size 最多写八次。", "--size can be given at most eight times.",
                                    "--size se donne huit fois au plus."})};
    }
    return sizes;
}

FieldPattern namePattern(const ExportRequest &request)
{
    if (!request.name) {
        return ExportNames::defaultPattern(wantedSizes(request).size() > 1);
    }
    FieldPattern pattern(*request.name);
    if (pattern.fault()) {
        throw UsageError{u"--name: "_s + patternFaultText(*pattern.fault()) + u": "_s + *request.name};
    }
    if (request.name->isEmpty()) {
        throw UsageError{
            localized({"--name 不能为空。", "--name cannot be empty.", "--name ne peut pas être vide."})};
    }
    return pattern;
}

void checkOptions(const ExportRequest &request)
{
    if (request.style.styleFile && request.style.templateId) {
        throw UsageError{
            localized({"--template 与 --style 不能同时使用。", "--template and --style exclude each other.",
                       "--template et --style s’excluent."})};
    }
    namePattern(request);
    workersFor(request.jobs, 1);
}

void warn(const ExportRequest &request, const Styler *styler)
{
    if (request.maxMb && request.format == u"png"_s) {
        Console::complain(localized({"--max-mb 对 PNG 不起作用。", "--max-mb does nothing with PNG.",
                                     "--max-mb n’a pas d’effet sur le PNG."}));
    }
    for (const QString &warning : styler ? styler->warnings() : QStringList()) {
        Console::complain(warning);
    }
}

BatchOutput outputFor(const ExportRequest &request)
{
    BatchOutput output;
    output.folder = request.folder;
    output.sizes = wantedSizes(request);
    output.pattern = namePattern(request);
    output.skipExisting = request.skipExisting;
    output.dryRun = request.dryRun;
    output.json = request.json;
    output.quiet = request.quiet;
    return output;
}

std::unique_ptr<PhotoMaker> makerFor(const ExportRequest &request, int workers, const PhotoSource &source,
                                     const QString &temporary, const QString &items)
{
    if (workers < 2) {
        return std::make_unique<LocalMaker>(source);
    }
    return std::make_unique<WorkerPool>(workers, workerArguments(request, temporary, items), source.stop());
}

QList<PhotoItem> itemsFrom(const QString &file)
{
    return readSession(readJsonFile(file)).photos;
}

int runExport(const ExportRequest &request, const Interruption &interruption)
{
    checkOptions(request);
    try {
        return runBatch(request, batchFrom(request), interruption);
    } catch (const Refusal &refusal) {
        Console::complain(refusal.what, refusal.message);
        return 1;
    } catch (const OperationCancelled &) {
        return interruption.exitStatus();
    }
}

} // namespace tarnovel::cli
