#pragma once

#include <memory>
#include <stop_token>

#include <QFuture>
#include <QHash>
#include <QImage>
#include <QList>
#include <QString>
#include <QThreadPool>

#include "base/UnclaimedFile.h"
#include "model/ImportedFile.h"
#include "model/Session.h"
#include "pipeline/ExportOptions.h"
#include "pipeline/PipelineError.h"
#include "render/CompositionRenderer.h"

namespace tarnovel {

class ImageError;

/// A framed photo in the temporary folder. It goes with the last copy of this.
struct ExportedFile {
    std::shared_ptr<UnclaimedFile> owner;
    QString path;
    QSize canvas;
    qint64 bytes = 0;
};

/// The one image service: its operations run one at a time on a thread of its own, in the order in which they
/// were asked for. Files are named relative to the library folder; an absolute path is taken as it is.
///
/// A future throws PipelineFailure, FileError where the disk refuses to write, or OperationCancelled.
class ImagePipeline {
public:
    ImagePipeline(QString libraryFolder, QString temporaryFolder);
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

    /// The longer side of what a blurred backdrop is made from, on screen and in exports.
    static constexpr int blurSourcePixels = 500;
    /// The picture for a blurred backdrop, of the same size.
    QFuture<QImage> blurred(const QImage &image, std::stop_token stop = {});

    /// Renders and encodes a photo into a new file in the temporary folder.
    QFuture<ExportedFile> exportPhoto(const PhotoItem &item, const ExportOptions &options,
                                      std::stop_token stop = {});

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
    auto enqueue(const QString &subject, std::stop_token stop, Work work);

    QString resolved(const QString &file) const;
    PipelineFailure failed(const QString &file, FramePicture picture, const ImageError &error) const;
    QImage decoded(const QString &file, int maxPixel, const std::stop_token &stop) const;
    QImage companion(FramePicture picture, const QString &file, int maxPixel,
                     const std::stop_token &stop) const;
    PhotoItem inspected(const ImportedFile &imported, TestDecode testDecode,
                        const std::stop_token &stop) const;
    QList<Ink> colors(const QString &file, const std::stop_token &stop);
    CompositionImages imagesFor(const PhotoItem &item, QSize canvas, const std::stop_token &stop) const;
    /// The part of the photo that the canvas shows, with its pixels on the canvas's.
    PhotoImage placed(const QString &file, const PhotoPlacement &placement, QSize canvas,
                      const std::stop_token &stop) const;
    /// The canvas is valid until the next call.
    const QImage &rendered(const PhotoItem &item, QSize canvas, const std::stop_token &stop);
    ExportedFile exported(const PhotoItem &item, const ExportOptions &options, const std::stop_token &stop);
    ExportedFile written(const QImage &image, const ExportOptions &options,
                         const std::stop_token &stop) const;

    const QString m_libraryFolder;
    const QString m_temporaryFolder;
    // The rest is touched on the service's thread alone.
    QHash<QString, QList<Ink>> m_paletteCache;
    /// Kept from one export to the next: the first touch of fifty megabytes costs as much as the drawing.
    QImage m_canvas;
    QThreadPool m_thread;
};

} // namespace tarnovel
