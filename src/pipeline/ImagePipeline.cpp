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

/// The pictures beside the photo and its blurred backdrop.
void addPictures(CompositionImages &images, PhotoReader &reader, const PhotoItem &item, QSize canvas,
                 const std::stop_token &stop)
{
    const FrameSettings &settings = item.settings;
    const int edge = longSide(canvas);
    if (settings.style != FrameStyle::film && settings.background == Backdrop::image &&
        settings.backgroundFile) {
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
}

/// What is drawn on each canvas; the photo is decoded once.
QList<CompositionImages> imagesFor(PhotoReader &reader, const PhotoItem &item, const QList<QSize> &canvases,
                                   const std::stop_token &stop)
{
    const FrameSettings &settings = item.settings;
    // A film frame fills the whole canvas with its base: nothing would be seen of a backdrop.
    const bool blurs = settings.style != FrameStyle::film && settings.background == Backdrop::blur;
    QList<PlacedRegion> regions;
    for (const QSize canvas : canvases) {
        regions.append(placedRegion(CompositionRenderer::photoPlacement(item, settings, canvas), canvas));
    }
    const PhotoReader::PlacedParts read =
        reader.placed(item.file, regions, blurs ? ImagePipeline::blurSourcePixels : 0, stop);
    throwIfCancelled(stop);
    const QImage blurred = blurs ? gaussianBlurred(read.small, blurSigma) : QImage();
    QList<CompositionImages> all;
    for (qsizetype i = 0; i < canvases.size(); ++i) {
        CompositionImages images;
        images.photo = read.photos.at(i);
        images.background = coveringPicture(blurred, canvases.at(i));
        addPictures(images, reader, item, canvases.at(i), stop);
        all.append(images);
    }
    return all;
}

void compose(QImage &canvas, const PhotoItem &item, const CompositionImages &images)
{
    if (canvas.isNull()) {
        throw PipelineFailure(PipelineError::tooLarge);
    }
    QPainter painter(&canvas);
    CompositionRenderer::draw(painter, item, item.settings, canvas.size(), images);
}

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
      m_rests(use != PipelineUse::Worker),
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

struct ImagePipeline::Exporting {
    PhotoItem item;
    std::stop_token stop;
    /// One size, until its promise is kept.
    struct Size {
        ExportOptions options;
        QPromise<ExportedFile> promise;
        QSize canvas;
        CompositionImages images;
        bool told = false;

        void fail(const std::exception_ptr &failure)
        {
            told = true;
            promise.setException(failure);
            promise.finish();
        }
    };
    std::vector<Size> sizes;
};

QFuture<ExportedFile> ImagePipeline::exportPhoto(const PhotoItem &item, const ExportOptions &options,
                                                 std::stop_token stop)
{
    return exportSizes(item, {options}, std::move(stop)).first();
}

QList<QFuture<ExportedFile>>
ImagePipeline::exportSizes(const PhotoItem &item, const QList<ExportOptions> &sizes, std::stop_token stop)
{
    const auto exporting = std::make_shared<Exporting>();
    exporting->item = item;
    exporting->stop = std::move(stop);
    QList<QFuture<ExportedFile>> futures;
    for (const ExportOptions &options : sizes) {
        Exporting::Size &size = exporting->sizes.emplace_back();
        size.options = options;
        futures.append(size.promise.future());
        size.promise.start();
    }
    ++m_exports;
    m_reading.thread.start([this, exporting] { readSizes(exporting); });
    return futures;
}

void ImagePipeline::readSizes(const std::shared_ptr<Exporting> &exporting)
{
    // Two photos at most are between their reading and their end.
    m_room.acquire();
    const JoinedStop either(exporting->stop, m_ending.get_token());
    const QString &file = exporting->item.file;
    std::vector<Exporting::Size *> wanted;
    QList<QSize> canvases;
    std::exception_ptr failure;
    for (Exporting::Size &size : exporting->sizes) {
        try {
            size.canvas = outputCanvas(exporting->item, size.options);
            canvases.append(size.canvas);
            wanted.push_back(&size);
        } catch (const PipelineFailure &) {
            failure = std::current_exception();
            if (exporting->sizes.size() > 1) {
                size.fail(failure);
            }
        }
    }
    try {
        if (!wanted.empty()) {
            const auto images = promised(file, either.token(), [&](const std::stop_token &token) {
                return imagesFor(m_reading.reader, exporting->item, canvases, token);
            });
            for (size_t i = 0; i < wanted.size(); ++i) {
                wanted[i]->images = images.at(static_cast<qsizetype>(i));
            }
            m_composing.start([this, exporting] { writeSizes(exporting); });
            return;
        }
    } catch (...) {
        failure = std::current_exception();
    }
    ended();
    for (Exporting::Size &size : exporting->sizes) {
        if (!size.told) {
            size.fail(failure);
        }
    }
}

void ImagePipeline::writeSizes(const std::shared_ptr<Exporting> &exporting)
{
    const JoinedStop either(exporting->stop, m_ending.get_token());
    std::vector<Exporting::Size *> wanted;
    for (Exporting::Size &size : exporting->sizes) {
        if (!size.told) {
            wanted.push_back(&size);
        }
    }
    for (Exporting::Size *size : wanted) {
        const auto work = [&](const std::stop_token &token) {
            if (m_canvas.size() != size->canvas) {
                m_canvas = QImage();
                m_canvas = QImage(size->canvas, QImage::Format_RGB32);
            }
            compose(m_canvas, exporting->item, size->images);
            size->images = {}; // the memory that they lie in is wanted for the next
            throwIfCancelled(token);
            return written(m_canvas, size->options, token);
        };
        const bool last = size == wanted.back();
        // A file that nobody waits for any more goes as soon as it has been told of.
        QPromise<ExportedFile> promise = std::move(size->promise);
        fulfil(promise, exporting->item.file, either.token(), work, [this, last] {
            if (last) {
                ended();
            }
        });
    }
}

void ImagePipeline::ended()
{
    m_room.release();
    if (--m_exports == 0 && m_rests) {
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

QFuture<CaptureMetadata> ImagePipeline::captured(const QString &file, std::stop_token stop)
{
    return enqueue(m_screen.thread, file, std::move(stop), [this, file](const std::stop_token &token) {
        return m_screen.reader.facts(file, token).metadata;
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
    return enqueue(
        m_screen.thread, item.file, std::move(stop), [this, item, canvas](const std::stop_token &token) {
            const CompositionImages images = imagesFor(m_screen.reader, item, {canvas}, token).first();
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
