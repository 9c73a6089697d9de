#include "pipeline/ImagePipeline.h"

#include <utility>

#include <QFileInfo>

#include "imaging/Resampler.h"
#include "pipeline/CameraTexts.h"
#include "pipeline/FrameImages.h"
#include "pipeline/PhotoPalette.h"
#include "pipeline/PipelineTask.h"
#include "pipeline/PlacedPhoto.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int palettePixels = 120;
constexpr int testDecodePixels = 100;
constexpr qsizetype mostPalettes = 100;

} // namespace

ImagePipeline::ImagePipeline(const QString &libraryFolder, QString temporaryFolder, PipelineUse use,
                             const QString &thumbnailFolder)
    : m_reading(libraryFolder, PictureMemory::None, {}),
      m_ownScreen(use == PipelineUse::Editor
                      ? std::make_unique<ReadingLane>(libraryFolder, PictureMemory::Kept, thumbnailFolder)
                      : nullptr),
      m_screen(m_ownScreen ? *m_ownScreen : m_reading),
      m_exports(m_reading, std::move(temporaryFolder),
                use == PipelineUse::Worker ? ExportStages::Memory::Kept : ExportStages::Memory::GivenBack,
                m_ending.get_token())
{
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
    m_exports.waitForDone();
}

template<typename Work>
auto ImagePipeline::onScreenThread(const QString &subject, std::stop_token stop, Work work)
{
    return enqueued(m_screen.thread, subject, std::move(stop), m_ending.get_token(), std::move(work));
}

QFuture<ExportedFile> ImagePipeline::exportPhoto(const PhotoItem &item, const ExportOptions &options,
                                                 std::stop_token stop)
{
    return exportSizes(item, {options}, std::move(stop)).first();
}

QList<QFuture<ExportedFile>>
ImagePipeline::exportSizes(const PhotoItem &item, const QList<ExportOptions> &sizes, std::stop_token stop)
{
    return m_exports.sizes(item, sizes, std::move(stop));
}

QFuture<QImage> ImagePipeline::read(const QString &file, int maxPixel, std::stop_token stop)
{
    return onScreenThread(file, std::move(stop), [this, file, maxPixel](const std::stop_token &token) {
        return m_screen.reader.picture(FramePicture::Photo, file, maxPixel, token);
    });
}

QFuture<PhotoItem> ImagePipeline::inspect(const ImportedFile &imported, TestDecode testDecode,
                                          std::stop_token stop)
{
    return onScreenThread(imported.file, std::move(stop),
                          [this, imported, testDecode](const std::stop_token &token) {
                              return inspected(imported, testDecode, token);
                          });
}

QFuture<CaptureMetadata> ImagePipeline::captured(const QString &file, std::stop_token stop)
{
    return onScreenThread(file, std::move(stop), [this, file](const std::stop_token &token) {
        return m_screen.reader.facts(file, token).metadata;
    });
}

QFuture<QList<Ink>> ImagePipeline::primaryColors(const QString &file, std::stop_token stop)
{
    return onScreenThread(file, std::move(stop),
                          [this, file](const std::stop_token &token) { return colors(file, token); });
}

QFuture<QImage> ImagePipeline::blurred(const QImage &image, std::stop_token stop)
{
    return onScreenThread(u"blur"_s, std::move(stop), [image](const std::stop_token &) {
        if (image.isNull()) {
            throw PipelineFailure(PipelineError::Unreadable);
        }
        return gaussianBlurred(image, blurSigma);
    });
}

QFuture<PhotoImage> ImagePipeline::readPlaced(const QString &file, const PhotoPlacement &placement,
                                              QSize canvas, std::stop_token stop)
{
    return onScreenThread(
        file, std::move(stop), [this, file, placement, canvas](const std::stop_token &token) {
            PhotoImage photo = m_screen.reader.placed(file, placement, canvas, 0, token).photo;
            photo.image = photo.image.copy(); // it may live on
            return photo;
        });
}

QFuture<PhotoImage> ImagePipeline::resamplePlaced(const QImage &photo, const PhotoPlacement &placement,
                                                  QSize canvas, std::stop_token stop)
{
    return onScreenThread(u"resampling"_s, std::move(stop),
                          [photo, placement, canvas](const std::stop_token &) {
                              return placedPhoto(photo, placement, canvas);
                          });
}

QFuture<ExportedFile> ImagePipeline::exportImage(const QImage &image, const ExportOptions &options,
                                                 std::stop_token stop)
{
    return m_exports.image(image, options, std::move(stop));
}

QFuture<QImage> ImagePipeline::render(const PhotoItem &item, QSize canvas, std::stop_token stop)
{
    return onScreenThread(item.file, std::move(stop), [this, item, canvas](const std::stop_token &token) {
        const CompositionImages images = frameImages(m_screen.reader, item, {canvas}, token).first();
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

} // namespace tarnovel
