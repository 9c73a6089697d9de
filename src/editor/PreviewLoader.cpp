#include "editor/PreviewLoader.h"

#include <utility>

#include "pipeline/FrameImages.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int photoPixels = PhotoReader::previewPixels;
constexpr int backdropPixels = 1200;
constexpr int logoPixels = 600;
constexpr int signaturePixels = 1200;

} // namespace

PreviewLoader::PreviewLoader(ImagePipeline &pipeline) : m_pipeline(pipeline) {}

PreviewLoader::~PreviewLoader()
{
    m_stop.request_stop();
}

/// Hears of the outcome on this object's thread, unless a newer request has been made by then.
template<typename Value>
void PreviewLoader::whenDone(const QFuture<Value> &future, std::function<void(const Value &)> arrived,
                             std::function<void()> failed)
{
    whenArrived<Value>(future, this, m_stop.get_token(), std::move(arrived), std::move(failed));
}

void PreviewLoader::request(FramePicture picture, const QString &file, int maxPixel, QImage Previews::*place)
{
    whenDone<QImage>(
        m_pipeline.read(file, maxPixel, m_stop.get_token()),
        [this, place](const QImage &image) {
            m_previews.*place = image;
            Q_EMIT changed();
        },
        [this, place, picture] {
            m_previews.*place = {};
            m_previews.missing.append(picture);
            Q_EMIT changed();
        });
}

void PreviewLoader::load(const PhotoItem &item)
{
    m_stop.request_stop();
    m_stop = {};
    m_previews.missing.clear();
    if (m_loadedFile == item.file) {
        m_previews.photo = m_loadedImage;
    } else {
        whenDone<QImage>(
            m_pipeline.read(item.file, photoPixels, m_stop.get_token()),
            [this, file = item.file](const QImage &image) {
                m_loadedFile = file;
                m_loadedImage = image;
                m_previews.photo = image;
                Q_EMIT changed();
            },
            [this] { Q_EMIT unreadable(); });
    }
    const Pictures pictures = picturesOf(item.settings);
    loadBackground(item.file, pictures);
    if (pictures.logo) {
        request(FramePicture::Logo, *pictures.logo, logoPixels, &Previews::logo);
    } else {
        m_previews.logo = {};
    }
    // Another signature lies elsewhere: the old one would show there, stretched, until the new one arrives.
    if (std::exchange(m_signatureFile, pictures.signature) != pictures.signature) {
        m_previews.signature = {};
    }
    if (pictures.signature) {
        request(FramePicture::Signature, *pictures.signature, signaturePixels, &Previews::signature);
    } else {
        m_previews.signature = {};
    }
    whenDone<QList<Ink>>(
        m_pipeline.primaryColors(item.file, m_stop.get_token()),
        [this](const QList<Ink> &colors) {
            m_previews.palette = colors;
            Q_EMIT changed();
        },
        [] {});
    Q_EMIT changed();
}

void PreviewLoader::loadBackground(const QString &photo, const Pictures &pictures)
{
    if (pictures.backgroundFile) {
        request(FramePicture::Background, *pictures.backgroundFile, backdropPixels, &Previews::background);
    } else if (pictures.background == Backdrop::blur) {
        const auto failed = [this] {
            m_previews.background = {};
            Q_EMIT changed();
        };
        whenDone<QImage>(
            m_pipeline.read(photo, blurSourcePixels, m_stop.get_token()),
            [this, failed](const QImage &source) {
                whenDone<QImage>(
                    m_pipeline.blurred(source, m_stop.get_token()),
                    [this](const QImage &image) {
                        m_previews.background = image;
                        Q_EMIT changed();
                    },
                    failed);
            },
            failed);
    } else {
        m_previews.background = {};
    }
}

PreviewLoader::Pictures PreviewLoader::picturesOf(const FrameSettings &settings)
{
    Pictures pictures;
    const bool image = settings.background == Backdrop::image && settings.backgroundFile;
    if (image || settings.background == Backdrop::blur) {
        pictures.background = settings.background;
    }
    if (image) {
        pictures.backgroundFile = settings.backgroundFile;
    }
    if (const TextLayer *logo = settings.layer(logoLayer)) {
        pictures.logo = logo->imageFile;
    }
    pictures.signature = settings.handwritingFile;
    return pictures;
}

void PreviewLoader::clear()
{
    m_stop.request_stop();
    m_previews = {};
    Q_EMIT changed();
}

void PreviewLoader::forget()
{
    m_loadedFile.clear();
    m_loadedImage = {};
    clear();
}

} // namespace tarnovel
