#include "export/LibraryExport.h"

#include "language/AppLanguage.h"
#include "pipeline/PipelineError.h"

namespace tarnovel {

namespace {

QString restrictedText()
{
    return localized(
        {"此设备限制了照片访问，请检查屏幕使用时间或设备管理设置。",
         "Photo access is restricted on this device. Check Screen Time or device management settings.",
         "L’accès aux photos est restreint sur cet appareil. Vérifiez Temps d’écran ou la gestion de "
         "l’appareil."});
}

QString deniedText()
{
    return localized(
        {"未保存任何照片。请在设置中允许 Tarnovel 添加照片后重试。",
         "No photos were saved. Allow Tarnovel to add photos in Settings, then try again.",
         "Aucune photo enregistrée. Autorisez Tarnovel à ajouter des photos dans Réglages, puis réessayez."});
}

} // namespace

LibraryExport::LibraryExport(ImagePipeline &pipeline, PhotoLibrary &library)
    : m_library(library),
      m_files(std::make_shared<ExportFileLifetime>()),
      m_thumbnails(pipeline),
      m_run(pipeline)
{
    connect(&m_thumbnails, &DeliveredThumbnails::changed, this, &LibraryExport::changed);
}

void LibraryExport::start(const QList<PhotoItem> &photos, const ExportOptions &options)
{
    if (photos.isEmpty() || m_phase == Phase::Rendering || m_phase == Phase::Saving) {
        return;
    }
    m_photos = photos;
    m_options = options;
    // Files of the last run that are still being shared stay with their sharer.
    m_files = std::make_shared<ExportFileLifetime>();
    m_phase = Phase::Rendering;
    m_progress = 0;
    m_total = static_cast<int>(photos.size());
    m_error.clear();
    m_denied = false;
    m_refusal.clear();
    m_cancelled = false;
    m_saved.clear();
    m_thumbnails.clear();
    m_quote.reset();
    Q_EMIT changed();
    m_disk.run(
        [this] {
            const PhotoLibraryAccess access = m_library.requestAccess();
            return std::pair(access, m_library.refusal());
        },
        [this](const std::pair<PhotoLibraryAccess, std::optional<FileError>> &answer) {
            const std::optional<FileError> &refusal = answer.second;
            m_refusal =
                refusal ? refusal->path() + localized({"：", ": ", "\u202f: "}) + errorDescription(*refusal)
                        : QString();
            begin(answer.first);
        });
}

void LibraryExport::cancel()
{
    m_cancelled = true;
    m_run.cancel();
}

void LibraryExport::failCancelled()
{
    fail(localized({"已取消导出，没有照片加入相册。",
                    "Export cancelled. No photos were added to your library.",
                    "Export annulé. Aucune photo n’a été ajoutée à votre photothèque."}));
}

void LibraryExport::begin(PhotoLibraryAccess access)
{
    if (m_cancelled) {
        failCancelled();
        return;
    }
    if (access != PhotoLibraryAccess::Authorised) {
        m_denied = access == PhotoLibraryAccess::Denied;
        fail(m_denied ? deniedText() : restrictedText());
        return;
    }
    m_run.start(m_photos, m_options,
                {.deliver = [files = m_files](int, const ExportedFile &file) { files->add(file); },
                 .progressed =
                     [this](int done) {
                         m_progress = done;
                         Q_EMIT changed();
                     },
                 .completed = [this] { save(); },
                 .cancelled = [this] { failCancelled(); },
                 .paused = [this] { Q_EMIT changed(); },
                 .failed = [this](const ExportProblem &problem) { failRendering(problem.description); }});
}

void LibraryExport::failRendering(const QString &description)
{
    fail(localized({"无法处理这批照片，尚未保存到相册：",
                    "Could not process this batch. It has not been saved to Photos: ",
                    "Impossible de traiter ce lot. Il n’a pas été enregistré dans Photos : "}) +
         description);
}

void LibraryExport::save()
{
    if (m_cancelled) {
        failCancelled();
        return;
    }
    // Those that were left out have no file; the others go in together.
    QList<PhotoItem> photos = m_photos;
    for (const ExportProblem &problem : m_run.skipped()) {
        photos.removeOne(problem.photo);
    }
    if (photos.isEmpty()) {
        failRendering(m_run.skipped().constLast().description);
        return;
    }
    m_phase = Phase::Saving;
    Q_EMIT changed();
    QList<PhotoLibrary::Addition> additions;
    for (qsizetype i = 0; i < photos.size(); ++i) {
        additions.append({m_files->files().at(i), photos.at(i).name});
    }
    m_disk.run(
        [this, additions] {
            QStringList saved;
            std::optional<FileError> refusal;
            try {
                saved = m_library.add(additions);
            } catch (const FileError &error) {
                refusal = error;
            }
            return std::pair(saved, refusal);
        },
        [this](const std::pair<QStringList, std::optional<FileError>> &outcome) {
            if (outcome.second) {
                fail(localized({"无法保存到相册：",
                                "Could not save to Photos: ", "Enregistrement dans Photos impossible : "}) +
                     errorDescription(*outcome.second));
                return;
            }
            m_saved = outcome.first;
            finishSaving();
        });
}

void LibraryExport::finishSaving()
{
    m_phase = Phase::Saved;
    m_files = std::make_shared<ExportFileLifetime>();
    m_quote = PhotographyQuotes::random();
    m_thumbnails.read(m_saved);
    Q_EMIT changed();
    Q_EMIT succeeded();
}

void LibraryExport::fail(const QString &error)
{
    m_files = std::make_shared<ExportFileLifetime>();
    m_phase = Phase::Idle;
    m_error = error;
    Q_EMIT changed();
}

QString LibraryExport::savingText()
{
    return localized({"正在保存到相册…", "Saving to Photos…", "Enregistrement dans Photos…"});
}

QString LibraryExport::savingHint()
{
    return localized(
        {"请等待保存完成。", "Please wait for saving to finish.", "Attendez la fin de l’enregistrement."});
}

QString LibraryExport::savedText()
{
    return localized({"已保存到相册", "Saved to your photo library", "Enregistré dans votre photothèque"});
}

QString LibraryExport::shareText()
{
    return localized({"分享全部导出的照片，或存储到“文件”。",
                      "Share all exported photos or save them to Files.",
                      "Partagez toutes les photos exportées ou enregistrez-les dans Fichiers."});
}

} // namespace tarnovel
