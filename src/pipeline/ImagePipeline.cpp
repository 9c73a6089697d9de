#include "pipeline/ImagePipeline.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QPromise>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/FileError.h"
#include "base/FileTrouble.h"
#include "base/Log.h"
#include "base/Uuid.h"
#include "imaging/ImageDecoder.h"
#include "imaging/ImageEncoder.h"
#include "imaging/ImageError.h"
#include "imaging/Resampler.h"
#include "pipeline/CameraTexts.h"
#include "pipeline/PhotoPalette.h"
#include "pipeline/PipelineError.h"
#include "pipeline/PlacedPhoto.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr double blurSigma = 22;
constexpr int backdropPixels = 1200;
constexpr int logoPixelsDecoded = 1500;
constexpr int signaturePixelsDecoded = 2400;
constexpr int palettePixels = 120;
constexpr int testDecodePixels = 100;
constexpr qsizetype mostPalettes = 100;
constexpr double defaultQuality = 0.95;

int longSide(QSizeF size)
{
    constexpr double longerThanAny = 1e6;
    return static_cast<int>(std::ceil(std::min(std::max(size.width(), size.height()), longerThanAny)));
}

QByteArray encoded(const QImage &canvas, const ExportOptions &options, const std::stop_token &stop)
{
    QByteArray bytes;
    if (options.png) {
        bytes = encodePng(canvas, stop);
    } else if (options.maxMB > 0) {
        const double limit = std::min(options.maxMB * 1'000'000, 1e15);
        const JpegSearchResult found = searchJpegQuality(canvas, static_cast<qint64>(limit), stop);
        if (!found.bytes) {
            throw PipelineFailure(PipelineError::fileSize);
        }
        bytes = *found.bytes;
    } else {
        bytes = encodeJpeg(canvas, defaultQuality);
    }
    if (bytes.isEmpty()) {
        throw PipelineFailure(PipelineError::write);
    }
    return bytes;
}

std::optional<PictureFault> faultOf(const ImageError &error)
{
    switch (error.cause()) {
    case ImageError::Cause::SmallPreview:
        return PictureFault::SmallPreview;
    case ImageError::Cause::TooLarge:
        return PictureFault::TooLarge;
    case ImageError::Cause::Missing:
    case ImageError::Cause::Unsupported:
    case ImageError::Cause::Damaged:
        break;
    }
    return std::nullopt;
}

template<typename Work>
auto promised(const QString &subject, const std::stop_token &stop, const Work &work)
{
    try {
        throwIfCancelled(stop);
        return work(stop);
    } catch (const ImageError &error) {
        qCWarning(logImaging) << subject << error.what();
        const std::optional<PictureFault> fault = faultOf(error);
        throw fault ? PipelineFailure(PipelineError::unreadable, {}, FramePicture::Photo, *fault)
                    : PipelineFailure(PipelineError::unreadable);
    } catch (const std::bad_alloc &) {
        qCWarning(logImaging) << subject << "out of memory";
        throw PipelineFailure(PipelineError::tooLarge);
    } catch (const QException &) {
        throw;
    } catch (const std::exception &error) {
        qCWarning(logImaging) << subject << error.what();
        // Nothing may leave the thread but what the service promises: the next photo is still to be done.
        throw PipelineFailure(PipelineError::unreadable);
    }
}

} // namespace

ImagePipeline::ImagePipeline(QString libraryFolder, QString temporaryFolder)
    : m_libraryFolder(std::move(libraryFolder)), m_temporaryFolder(std::move(temporaryFolder))
{
    m_thread.setMaxThreadCount(1);
    m_thread.setExpiryTimeout(-1);
}

ImagePipeline::~ImagePipeline()
{
    m_thread.waitForDone();
}

/// Runs `work(stop)` on the service's thread. What the lower layers throw becomes what the service promises;
/// the log gets the cause, with the `subject`.
template<typename Work>
auto ImagePipeline::enqueue(const QString &subject, std::stop_token stop, Work work)
{
    using Value = std::decay_t<std::invoke_result_t<Work, const std::stop_token &>>;
    // A promise, not QtConcurrent::run: whoever waits for a task of that may be made to run it, out of turn
    // and on another thread.
    const auto promise = std::make_shared<QPromise<Value>>();
    QFuture<Value> future = promise->future();
    promise->start(); // nobody waits for a future that has not started
    m_thread.start([promise, subject, stop = std::move(stop), work = std::move(work)] {
        try {
            promise->addResult(promised(subject, stop, work));
        } catch (...) {
            promise->setException(std::current_exception());
        }
        promise->finish();
    });
    return future;
}

QFuture<QImage> ImagePipeline::read(const QString &file, int maxPixel, std::stop_token stop)
{
    return enqueue(file, std::move(stop), [this, file, maxPixel](const std::stop_token &token) {
        return decoded(file, maxPixel, token);
    });
}

QFuture<PhotoItem> ImagePipeline::inspect(const ImportedFile &imported, TestDecode testDecode,
                                          std::stop_token stop)
{
    return enqueue(imported.file, std::move(stop),
                   [this, imported, testDecode](const std::stop_token &token) {
                       return inspected(imported, testDecode, token);
                   });
}

QFuture<QList<Ink>> ImagePipeline::primaryColors(const QString &file, std::stop_token stop)
{
    return enqueue(file, std::move(stop),
                   [this, file](const std::stop_token &token) { return colors(file, token); });
}

QFuture<QImage> ImagePipeline::blurred(const QImage &image, std::stop_token stop)
{
    return enqueue(u"blur"_s, std::move(stop), [image](const std::stop_token &) {
        if (image.isNull()) {
            throw PipelineFailure(PipelineError::unreadable);
        }
        return gaussianBlurred(image, blurSigma);
    });
}

QFuture<ExportedFile> ImagePipeline::exportPhoto(const PhotoItem &item, const ExportOptions &options,
                                                 std::stop_token stop)
{
    return enqueue(item.file, std::move(stop), [this, item, options](const std::stop_token &token) {
        return exported(item, options, token);
    });
}

QFuture<PhotoImage> ImagePipeline::readPlaced(const QString &file, const PhotoPlacement &placement,
                                              QSize canvas, std::stop_token stop)
{
    return enqueue(file, std::move(stop), [this, file, placement, canvas](const std::stop_token &token) {
        return placed(file, placement, canvas, token);
    });
}

QFuture<PhotoImage> ImagePipeline::resamplePlaced(const QImage &photo, const PhotoPlacement &placement,
                                                  QSize canvas, std::stop_token stop)
{
    return enqueue(u"resampling"_s, std::move(stop), [photo, placement, canvas](const std::stop_token &) {
        return placedPhoto(photo, placement, canvas);
    });
}

QFuture<ExportedFile> ImagePipeline::exportImage(const QImage &image, const ExportOptions &options,
                                                 std::stop_token stop)
{
    return enqueue(
        u"a finished picture"_s, std::move(stop),
        [this, image, options](const std::stop_token &token) { return written(image, options, token); });
}

QFuture<QImage> ImagePipeline::render(const PhotoItem &item, QSize canvas, std::stop_token stop)
{
    return enqueue(item.file, std::move(stop), [this, item, canvas](const std::stop_token &token) {
        return rendered(item, canvas, token).copy();
    });
}

QString ImagePipeline::resolved(const QString &file) const
{
    return QDir(m_libraryFolder).filePath(file);
}

/// A picture that could not be read, with the cause where that is the file rather than what is in it.
PipelineFailure ImagePipeline::failed(const QString &file, FramePicture picture,
                                      const ImageError &error) const
{
    qCWarning(logImaging) << resolved(file) << error.what();
    const QString named = picture == FramePicture::Photo ? QString() : file;
    if (const std::optional<PictureFault> fault = faultOf(error)) {
        return {PipelineError::unreadable, named, picture, *fault};
    }
    return PipelineFailure(PipelineError::unreadable, named, picture, fileTrouble(resolved(file)));
}

QImage ImagePipeline::decoded(const QString &file, int maxPixel, const std::stop_token &stop) const
{
    try {
        return decodeImage(resolved(file), maxPixel, stop);
    } catch (const ImageError &error) {
        throw failed(file, FramePicture::Photo, error);
    }
}

/// A picture that goes with a photo: a failure names it, or the photo would be blamed.
QImage ImagePipeline::companion(FramePicture picture, const QString &file, int maxPixel,
                                const std::stop_token &stop) const
{
    try {
        return decodeImage(resolved(file), maxPixel, stop);
    } catch (const ImageError &error) {
        throw failed(file, picture, error);
    }
}

PhotoItem ImagePipeline::inspected(const ImportedFile &imported, TestDecode testDecode,
                                   const std::stop_token &stop) const
{
    const QString path = resolved(imported.file);
    QSize size;
    try {
        size = readImageHeader(path).uprightSize();
    } catch (const ImageError &error) {
        throw failed(imported.file, FramePicture::Photo, error);
    }
    if (testDecode == TestDecode::Yes) {
        decoded(imported.file, testDecodePixels, stop);
    }
    const CameraTexts texts = CameraTexts::from(readCaptureMetadata(path));
    PhotoItem item;
    item.id = QUuid::createUuid();
    item.file = imported.file;
    item.name = QFileInfo(path).completeBaseName();
    item.width = size.width();
    item.height = size.height();
    item.settings.layer(u"brand"_s)->text = texts.brand;
    item.settings.layer(u"model"_s)->text = texts.model;
    item.settings.layer(u"exif"_s)->text = texts.exif;
    item.settings.layer(u"date"_s)->text = texts.date;
    return item;
}

QList<Ink> ImagePipeline::colors(const QString &file, const std::stop_token &stop)
{
    if (const auto known = m_paletteCache.constFind(file); known != m_paletteCache.constEnd()) {
        return *known;
    }
    QList<Ink> colors = PhotoPalette::extract(decoded(file, palettePixels, stop));
    if (m_paletteCache.size() >= mostPalettes) {
        m_paletteCache.clear();
    }
    m_paletteCache.insert(file, colors);
    return colors;
}

PhotoImage ImagePipeline::placed(const QString &file, const PhotoPlacement &placement, QSize canvas,
                                 const std::stop_token &stop) const
{
    const PlacedRegion region = placedRegion(placement, canvas);
    if (region.pixels.isEmpty()) {
        return {};
    }
    const QString path = resolved(file);
    try {
        const QSizeF source = readImageHeader(path).uprightSize();
        const QRectF part(region.extent.x() * source.width(), region.extent.y() * source.height(),
                          region.extent.width() * source.width(), region.extent.height() * source.height());
        return {decodeImageRegion(path, part, region.pixels.size(), stop), region.extent};
    } catch (const ImageError &error) {
        throw failed(file, FramePicture::Photo, error);
    }
}

CompositionImages ImagePipeline::imagesFor(const PhotoItem &item, QSize canvas,
                                           const std::stop_token &stop) const
{
    const FrameSettings &settings = item.settings;
    const int edge = longSide(canvas);
    CompositionImages images;
    images.photo =
        placed(item.file, CompositionRenderer::photoPlacement(item, settings, canvas), canvas, stop);
    throwIfCancelled(stop);
    // A film frame fills the whole canvas with its base: nothing would be seen of a backdrop.
    if (settings.style == FrameStyle::film) {
        images.background = {};
    } else if (settings.background == Backdrop::blur) {
        images.background =
            coveringPicture(gaussianBlurred(decoded(item.file, blurSourcePixels, stop), blurSigma), canvas);
    } else if (settings.background == Backdrop::image && settings.backgroundFile) {
        images.background = coveringPicture(
            companion(FramePicture::Background, *settings.backgroundFile, backdropPixels, stop), canvas);
    }
    throwIfCancelled(stop);
    // Logo and signature are resampled to the pixels that they cover, as the photo is: the painter scales
    // badly.
    const TextLayer *logo = settings.layer(logoLayer);
    if (const QSize size = logoPixels(item, canvas); !size.isEmpty()) {
        const int most = std::min(edge, logoPixelsDecoded);
        images.logo = scaledPicture(
            companion(FramePicture::Logo, *logo->imageFile, std::min(most, longSide(size)), stop), size);
    }
    if (settings.handwritingFile) {
        // Its own aspect decides on its size where the settings have none.
        const double widest = settings.handwritingWidth.value_or(0.42) * canvas.width();
        const double aspect = std::max(settings.handwritingAspect.value_or(1), 0.1);
        const int drawn = longSide({widest, settings.handwritingAspect ? widest / aspect : widest});
        const QImage picture = companion(FramePicture::Signature, *settings.handwritingFile,
                                         std::max(1, std::min({edge, signaturePixelsDecoded, drawn})), stop);
        images.signature = scaledPicture(picture, signaturePixels(item, picture.size(), canvas));
    }
    return images;
}

const QImage &ImagePipeline::rendered(const PhotoItem &item, QSize canvas, const std::stop_token &stop)
{
    const CompositionImages images = imagesFor(item, canvas, stop);
    throwIfCancelled(stop);
    if (m_canvas.size() != canvas) {
        m_canvas = QImage();
        m_canvas = QImage(canvas, QImage::Format_RGB32);
        if (m_canvas.isNull()) {
            throw PipelineFailure(PipelineError::tooLarge);
        }
    }
    QPainter painter(&m_canvas);
    CompositionRenderer::draw(painter, item, item.settings, canvas, images);
    return m_canvas;
}

ExportedFile ImagePipeline::exported(const PhotoItem &item, const ExportOptions &options,
                                     const std::stop_token &stop)
{
    return written(rendered(item, outputCanvas(item, options), stop), options, stop);
}

ExportedFile ImagePipeline::written(const QImage &image, const ExportOptions &options,
                                    const std::stop_token &stop) const
{
    const QByteArray bytes = encoded(image, options, stop);
    throwIfCancelled(stop);
    const QString folder = m_temporaryFolder + u"/Exports"_s;
    if (!QDir().mkpath(folder)) {
        throw FileError(folder, QFileInfo(folder).exists() ? ENOTDIR : errno);
    }
    const QString path = folder + u"/Kesmar-"_s + uuidText(QUuid::createUuid()).left(8) +
                         (options.png ? u".png"_s : u".jpg"_s);
    replaceFile(path, bytes, Durability::Unsynced);
    return {std::make_shared<UnclaimedFile>(path), path, image.size(), bytes.size()};
}

} // namespace tarnovel
