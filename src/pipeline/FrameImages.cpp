#include "pipeline/FrameImages.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

#include "base/Cancellation.h"
#include "imaging/Resampler.h"
#include "model/Signature.h"
#include "pipeline/PipelineError.h"
#include "pipeline/PlacedPhoto.h"

namespace tarnovel {

namespace {

constexpr int backdropPixels = 1200;
constexpr int logoPixelsDecoded = 1500;
constexpr int signaturePixelsDecoded = 2400;

int longSide(QSizeF size)
{
    constexpr double longerThanAny = 1e6;
    return static_cast<int>(std::ceil(std::min(std::max(size.width(), size.height()), longerThanAny)));
}

QImage logoImage(PhotoReader &reader, const PhotoItem &item, QSize canvas, const std::stop_token &stop)
{
    const QSize size = logoPixels(item, canvas);
    if (size.isEmpty()) {
        return {};
    }
    const int most = std::min(longSide(canvas), logoPixelsDecoded);
    return scaledPicture(reader.picture(FramePicture::Logo, *item.settings.layer(logoLayer)->imageFile,
                                        std::min(most, longSide(size)), stop),
                         size);
}

QImage signatureImage(PhotoReader &reader, const PhotoItem &item, QSize canvas, const std::stop_token &stop)
{
    const FrameSettings &settings = item.settings;
    if (!settings.handwritingFile) {
        return {};
    }
    // Its own aspect decides on its size where the settings have none.
    const double widest = signaturePlace(settings).width * canvas.width();
    const double aspect = std::max(settings.handwritingAspect.value_or(1), 0.1);
    const int drawn = longSide({widest, settings.handwritingAspect ? widest / aspect : widest});
    const QImage picture =
        reader.picture(FramePicture::Signature, *settings.handwritingFile,
                       std::max(1, std::min({longSide(canvas), signaturePixelsDecoded, drawn})), stop);
    return scaledPicture(picture, signaturePixels(item, picture.size(), canvas));
}

} // namespace

QList<CompositionImages> frameImages(PhotoReader &reader, const PhotoItem &item, const QList<QSize> &canvases,
                                     const std::stop_token &stop)
{
    const FrameSettings &settings = item.settings;
    // A film frame fills the whole canvas with its base: nothing would be seen of a backdrop.
    const bool hasBackdrop = settings.style != FrameStyle::film;
    const bool blurs = hasBackdrop && settings.background == Backdrop::blur;
    QList<PlacedRegion> regions;
    for (const QSize canvas : canvases) {
        regions.append(placedRegion(CompositionRenderer::photoPlacement(item, settings, canvas), canvas));
    }
    const PhotoReader::PlacedParts read =
        reader.placed(item.file, regions, blurs ? blurSourcePixels : 0, stop);
    throwIfCancelled(stop);
    const QImage blurred = blurs ? gaussianBlurred(read.small, blurSigma) : QImage();
    QList<CompositionImages> all;
    for (qsizetype i = 0; i < canvases.size(); ++i) {
        const QSize canvas = canvases.at(i);
        CompositionImages images;
        images.photo = read.photos.at(i);
        if (blurs) {
            images.background = coveringPicture(blurred, canvas);
        } else if (hasBackdrop && settings.background == Backdrop::image && settings.backgroundFile) {
            images.background = coveringPicture(
                reader.picture(FramePicture::Background, *settings.backgroundFile, backdropPixels, stop),
                canvas);
        }
        throwIfCancelled(stop);
        // Logo and signature are resampled to the pixels that they cover, as the photo is: the painter scales
        // badly.
        images.logo = logoImage(reader, item, canvas, stop);
        images.signature = signatureImage(reader, item, canvas, stop);
        all.append(images);
    }
    return all;
}

void compose(QImage &canvas, const PhotoItem &item, const CompositionImages &images)
{
    if (canvas.isNull()) {
        throw PipelineFailure(PipelineError::TooLarge);
    }
    QPainter painter(&canvas);
    CompositionRenderer::draw(painter, item, item.settings, canvas.size(), images);
}

} // namespace tarnovel
