#include "pipeline/ImagePipeline.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QPromise>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/FileError.h"
#include "base/Log.h"
#include "base/Uuid.h"
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
/// One that is read, and one that is drawn, encoded and written.
constexpr int photosAtWork = 2;

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

/// Stops when either of two does.
class JoinedStop {
public:
    JoinedStop(const std::stop_token &one, const std::stop_token &other)
        : m_one(one, [this] { m_both.request_stop(); }), m_other(other, [this] { m_both.request_stop(); })
    {
    }
    std::stop_token token() const { return m_both.get_token(); }

private:
    std::stop_source m_both;
    std::stop_callback<std::function<void()>> m_one;
    std::stop_callback<std::function<void()>> m_other;
};

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

/// Does the work, calls `ended`, and then tells how it went: whoever hears of it may look at what is left
/// behind.
template<typename Value, typename Work, typename Ended>
void fulfil(QPromise<Value> &promise, const QString &subject, const std::stop_token &stop, const Work &work,
            const Ended &ended)
{
    std::optional<Value> value;
    std::exception_ptr failure;
    try {
        value = promised(subject, stop, work);
    } catch (...) {
        failure = std::current_exception();
    }
    ended();
    if (failure) {
        promise.setException(failure);
    } else {
        promise.addResult(std::move(*value));
    }
    promise.finish();
}

CompositionImages imagesFor(PhotoReader &reader, const PhotoItem &item, QSize canvas,
                            const std::stop_token &stop)
{
    const FrameSettings &settings = item.settings;
    const int edge = longSide(canvas);
    // A film frame fills the whole canvas with its base: nothing would be seen of a backdrop.
    const bool hasBackdrop = settings.style != FrameStyle::film;
    const bool blurs = hasBackdrop && settings.background == Backdrop::blur;
    CompositionImages images;
    PhotoReader::Placed read =
        reader.placed(item.file, CompositionRenderer::photoPlacement(item, settings, canvas), canvas,
                      blurs ? ImagePipeline::blurSourcePixels : 0, stop);
    images.photo = read.photo;
    throwIfCancelled(stop);
    if (blurs) {
        images.background = coveringPicture(gaussianBlurred(read.small, blurSigma), canvas);
    } else if (hasBackdrop && settings.background == Backdrop::image && settings.backgroundFile) {
        images.background = coveringPicture(
            reader.picture(FramePicture::Background, *settings.backgroundFile, backdropPixels, stop), canvas);
    }
    throwIfCancelled(stop);
    // Logo and signature are resampled to the pixels that they cover, as the photo is: the painter scales
    // badly.
    const TextLayer *logo = settings.layer(logoLayer);
    if (const QSize size = logoPixels(item, canvas); !size.isEmpty()) {
        const int most = std::min(edge, logoPixelsDecoded);
        images.logo = scaledPicture(
            reader.picture(FramePicture::Logo, *logo->imageFile, std::min(most, longSide(size)), stop), size);
    }
    if (settings.handwritingFile) {
        // Its own aspect decides on its size where the settings have none.
        const double widest = settings.handwritingWidth.value_or(0.42) * canvas.width();
        const double aspect = std::max(settings.handwritingAspect.value_or(1), 0.1);
        const int drawn = longSide({widest, settings.handwritingAspect ? widest / aspect : widest});
        const QImage picture =
            reader.picture(FramePicture::Signature, *settings.handwritingFile,
                           std::max(1, std::min({edge, signaturePixelsDecoded, drawn})), stop);
        images.signature = scaledPicture(picture, signaturePixels(item, picture.size(), canvas));
    }
    return images;
}

void compose(QImage &canvas, const PhotoItem &item, const CompositionImages &images)
{
    if (canvas.isNull()) {
        throw PipelineFailure(PipelineError::tooLarge);
    }
    QPainter painter(&canvas);
    CompositionRenderer::draw(painter, item, item.settings, canvas.size(), images);
}

/// A photo that has been read, and the canvas that it is for.
struct ReadPhoto {
    QSize canvas;
    CompositionImages images;
};

} // namespace

ImagePipeline::Lane::Lane(const QString &libraryFolder, PictureMemory memory, const QString &thumbnailFolder)
    : reader(libraryFolder, memory, thumbnailFolder)
{
    thread.setMaxThreadCount(1);
    thread.setExpiryTimeout(-1); // a decoder ends with the thread that started it
}

ImagePipeline::ImagePipeline(const QString &libraryFolder, QString temporaryFolder, PipelineUse use,
                             const QString &thumbnailFolder)
    : m_temporaryFolder(std::move(temporaryFolder)),
      m_reading(libraryFolder, PictureMemory::None, {}),
      m_ownScreen(use == PipelineUse::Editor
                      ? std::make_unique<Lane>(libraryFolder, PictureMemory::Kept, thumbnailFolder)
                      : nullptr),
      m_screen(m_ownScreen ? *m_ownScreen : m_reading),
      m_room(photosAtWork)
{
    m_composing.setMaxThreadCount(1);
    m_composing.setExpiryTimeout(-1);
    if (!thumbnailFolder.isEmpty()) {
        constexpr int afterPictures = -1;
        m_screen.thread.start([this] { m_screen.reader.pruneThumbnails(); }, afterPictures);
    }
}

ImagePipeline::~ImagePipeline()
{
    m_ending.request_stop();
    m_screen.thread.waitForDone();
    m_reading.thread.waitForDone();
    m_composing.waitForDone();
}

/// Runs `work(stop)` on the thread. What the lower layers throw becomes what the service promises; the log
/// gets the cause, with the `subject`.
template<typename Work>
auto ImagePipeline::enqueue(QThreadPool &thread, const QString &subject, std::stop_token stop, Work work)
{
    using Value = std::decay_t<std::invoke_result_t<Work, const std::stop_token &>>;
    // A promise, not QtConcurrent::run: whoever waits for a task of that may be made to run it, out of turn
    // and on another thread.
    auto promise = std::make_shared<QPromise<Value>>();
    QFuture<Value> future = promise->future();
    promise->start(); // nobody waits for a future that has not started
    thread.start([this, promise, subject, stop = std::move(stop), work = std::move(work)]() mutable {
        const JoinedStop either(stop, m_ending.get_token());
        fulfil(*promise, subject, either.token(), work, [] {});
    });
    return future;
}

QFuture<ExportedFile> ImagePipeline::exportPhoto(const PhotoItem &item, const ExportOptions &options,
                                                 std::stop_token stop)
{
    auto promise = std::make_shared<QPromise<ExportedFile>>();
    QFuture<ExportedFile> future = promise->future();
    promise->start();
    ++m_exports;
    m_reading.thread.start([this, promise, item, options, stop = std::move(stop)]() mutable {
        // Two photos at most are between their reading and their end.
        m_room.acquire();
        const auto read = std::make_shared<ReadPhoto>();
        const JoinedStop either(stop, m_ending.get_token());
        try {
            *read = promised(item.file, either.token(), [&](const std::stop_token &token) {
                const QSize canvas = outputCanvas(item, options);
                return ReadPhoto{canvas, imagesFor(m_reading.reader, item, canvas, token)};
            });
        } catch (...) {
            ended();
            promise->setException(std::current_exception());
            promise->finish();
            return;
        }
        m_composing.start([this, promise = std::move(promise), item, options, stop, read]() mutable {
            const auto work = [&](const std::stop_token &token) {
                if (m_canvas.size() != read->canvas) {
                    m_canvas = QImage();
                    m_canvas = QImage(read->canvas, QImage::Format_RGB32);
                }
                compose(m_canvas, item, read->images);
                read->images = {}; // the memory that they lie in is wanted for the next
                throwIfCancelled(token);
                return written(m_canvas, options, token);
            };
            const JoinedStop eitherNow(stop, m_ending.get_token());
            fulfil(*promise, item.file, eitherNow.token(), work, [this] { ended(); });
        });
    });
    return future;
}

void ImagePipeline::ended()
{
    m_room.release();
    if (--m_exports == 0) {
        m_composing.start([this] { m_canvas = {}; });
        m_reading.thread.start([this] { m_reading.reader.rest(); });
    }
}

QFuture<QImage> ImagePipeline::read(const QString &file, int maxPixel, std::stop_token stop)
{
    return enqueue(m_screen.thread, file, std::move(stop),
                   [this, file, maxPixel](const std::stop_token &token) {
                       return m_screen.reader.picture(FramePicture::Photo, file, maxPixel, token);
                   });
}

QFuture<PhotoItem> ImagePipeline::inspect(const ImportedFile &imported, TestDecode testDecode,
                                          std::stop_token stop)
{
    return enqueue(m_screen.thread, imported.file, std::move(stop),
                   [this, imported, testDecode](const std::stop_token &token) {
                       return inspected(imported, testDecode, token);
                   });
}

QFuture<QList<Ink>> ImagePipeline::primaryColors(const QString &file, std::stop_token stop)
{
    return enqueue(m_screen.thread, file, std::move(stop),
                   [this, file](const std::stop_token &token) { return colors(file, token); });
}

QFuture<QImage> ImagePipeline::blurred(const QImage &image, std::stop_token stop)
{
    return enqueue(m_screen.thread, u"blur"_s, std::move(stop), [image](const std::stop_token &) {
        if (image.isNull()) {
            throw PipelineFailure(PipelineError::unreadable);
        }
        return gaussianBlurred(image, blurSigma);
    });
}

QFuture<PhotoImage> ImagePipeline::readPlaced(const QString &file, const PhotoPlacement &placement,
                                              QSize canvas, std::stop_token stop)
{
    return enqueue(m_screen.thread, file, std::move(stop),
                   [this, file, placement, canvas](const std::stop_token &token) {
                       PhotoImage photo = m_screen.reader.placed(file, placement, canvas, 0, token).photo;
                       photo.image = photo.image.copy(); // it may live on
                       return photo;
                   });
}

QFuture<PhotoImage> ImagePipeline::resamplePlaced(const QImage &photo, const PhotoPlacement &placement,
                                                  QSize canvas, std::stop_token stop)
{
    return enqueue(m_screen.thread, u"resampling"_s, std::move(stop),
                   [photo, placement, canvas](const std::stop_token &) {
                       return placedPhoto(photo, placement, canvas);
                   });
}

QFuture<ExportedFile> ImagePipeline::exportImage(const QImage &image, const ExportOptions &options,
                                                 std::stop_token stop)
{
    return enqueue(
        m_composing, u"a finished picture"_s, std::move(stop),
        [this, image, options](const std::stop_token &token) { return written(image, options, token); });
}

QFuture<QImage> ImagePipeline::render(const PhotoItem &item, QSize canvas, std::stop_token stop)
{
    return enqueue(m_screen.thread, item.file, std::move(stop),
                   [this, item, canvas](const std::stop_token &token) {
                       const CompositionImages images = imagesFor(m_screen.reader, item, canvas, token);
                       throwIfCancelled(token);
                       QImage image(canvas, QImage::Format_RGB32);
                       compose(image, item, images);
                       return image;
                   });
}

PhotoItem ImagePipeline::inspected(const ImportedFile &imported, TestDecode testDecode,
                                   const std::stop_token &stop)
{
    const PhotoFacts facts = m_screen.reader.facts(imported.file, stop);
    if (testDecode == TestDecode::Yes) {
        m_screen.reader.picture(FramePicture::Photo, imported.file, testDecodePixels, stop);
    }
    const QSize size = facts.header.uprightSize();
    const CameraTexts texts = CameraTexts::from(facts.metadata);
    PhotoItem item;
    item.id = QUuid::createUuid();
    item.file = imported.file;
    item.name = QFileInfo(imported.file).completeBaseName();
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
    QList<Ink> colors =
        PhotoPalette::extract(m_screen.reader.picture(FramePicture::Photo, file, palettePixels, stop));
    if (m_paletteCache.size() >= mostPalettes) {
        m_paletteCache.clear();
    }
    m_paletteCache.insert(file, colors);
    return colors;
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
