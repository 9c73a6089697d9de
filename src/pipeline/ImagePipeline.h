#pragma once

#include <memory>
#include <stop_token>

#include <QFuture>
#include <QHash>
#include <QImage>
#include <QList>
#include <QString>

#include "imaging/CaptureMetadata.h"
#include "model/ImportedFile.h"
#include "model/Session.h"
#include "pipeline/ExportStages.h"
#include "render/CompositionRenderer.h"

namespace tarnovel {

/// Who asks for pictures.
enum class PipelineUse {
    /// The window: pictures for the screen have their own thread and decoder, so that an export holds none of
    /// them
    /// up, and decoded photos are remembered.
    Editor,
    /// A command, which does one thing at a time.
    Command,
    /// A process that makes one photo after another until it is ended: the memory of one is kept for the
    /// next, although nobody has asked for it yet.
    Worker,
};

/// The one image service. Reading for the screen and exporting go on beside each other; of each kind, what
/// was asked for first is done first, and no two canvases are rendered at the same time. While one photo is
/// drawn, encoded and written, the next one that was asked for is read. Files are named relative to the
/// library folder; an absolute path is taken as it is.
///
/// A future throws PipelineFailure, FileError where the disk refuses to write, or OperationCancelled.
class ImagePipeline {
public:
    /// In `thumbnailFolder`, thumbnails are kept from start to start; nowhere where it is empty.
    ImagePipeline(const QString &libraryFolder, QString temporaryFolder,
                  PipelineUse use = PipelineUse::Editor, const QString &thumbnailFolder = {});
    ~ImagePipeline();
    ImagePipeline(const ImagePipeline &) = delete;
    ImagePipeline &operator=(const ImagePipeline &) = delete;

    enum class TestDecode {
        /// Decode the photo small, to be sure that it can be.
        Yes,
        /// Trust the header: for callers that decode the photo next anyway.
        No,
    };

    /// The upright picture, its longer side at most `maxPixel`.
    QFuture<QImage> read(const QString &file, int maxPixel, std::stop_token stop = {});

    /// A photo of the library with default settings and the texts that its camera wrote.
    QFuture<PhotoItem> inspect(const ImportedFile &imported, TestDecode testDecode = TestDecode::Yes,
                               std::stop_token stop = {});

    /// Up to three colours of a photo, remembered for the last hundred files.
    QFuture<QList<Ink>> primaryColors(const QString &file, std::stop_token stop = {});

    /// The picture for a blurred backdrop, of the same size.
    QFuture<QImage> blurred(const QImage &image, std::stop_token stop = {});

    /// Renders and encodes a photo into a new file in the temporary folder.
    QFuture<ExportedFile> exportPhoto(const PhotoItem &item, const ExportOptions &options,
                                      std::stop_token stop = {});

    /// The same in several sizes, at most `mostSizes`, from one decoding; each size may fail alone. The
    /// futures come in the order of the options.
    QList<QFuture<ExportedFile>> exportSizes(const PhotoItem &item, const QList<ExportOptions> &sizes,
                                             std::stop_token stop = {});
    static constexpr qsizetype mostSizes = 8;

    /// Where a file of the library lies.
    QString path(const QString &file) const { return m_reading.reader.path(file); }

    /// What the camera wrote about a photo.
    QFuture<CaptureMetadata> captured(const QString &file, std::stop_token stop = {});

    /// The part of a photo that a canvas of this size shows, decoded straight to the canvas's pixels.
    QFuture<PhotoImage> readPlaced(const QString &file, const PhotoPlacement &placement, QSize canvas,
                                   std::stop_token stop = {});

    /// The same from a picture of the whole photo that has been decoded before.
    QFuture<PhotoImage> resamplePlaced(const QImage &photo, const PhotoPlacement &placement, QSize canvas,
                                       std::stop_token stop = {});

    /// Encodes a finished picture into a new file in the temporary folder.
    QFuture<ExportedFile> exportImage(const QImage &image, const ExportOptions &options,
                                      std::stop_token stop = {});

    /// Renders a photo on a canvas of this size.
    QFuture<QImage> render(const PhotoItem &item, QSize canvas, std::stop_token stop = {});

private:
    template<typename Work>
    auto onScreenThread(const QString &subject, std::stop_token stop, Work work);

    PhotoItem inspected(const ImportedFile &imported, TestDecode testDecode, const std::stop_token &stop);
    QList<Ink> colors(const QString &file, const std::stop_token &stop);

    /// Nobody waits any more for what is still to be done.
    std::stop_source m_ending;
    ReadingLane m_reading;
    std::unique_ptr<ReadingLane> m_ownScreen;
    /// Of the screen; a command's is the other one.
    ReadingLane &m_screen;
    /// Of the screen's thread.
    QHash<QString, QList<Ink>> m_paletteCache;
    ExportStages m_exports;
};

} // namespace tarnovel
