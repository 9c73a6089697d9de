#include "handwriting/HandwritingReference.h"

#include <algorithm>

#include "handwriting/SignatureSave.h"
#include "model/Signature.h"
#include "pipeline/ImagePipeline.h"
#include "render/CompositionRenderer.h"
#include "render/FrameGeometry.h"

namespace tarnovel {

namespace {

constexpr double longEdgePixels = 1400;

} // namespace

HandwritingReference HandwritingReference::of(const PhotoItem &photo)
{
    const QSizeF canvas = FrameGeometry::canvas(photo.settings.ratio(photo.size()), longEdgePixels);
    const QRectF rect = CompositionRenderer::photoRect(photo, photo.settings, canvas);
    const double lower = rect.isEmpty() ? 1 : rect.bottom() / canvas.height();
    return {canvas.toSize(), std::clamp(lower, 0.0, 1.0)};
}

QFuture<QImage> HandwritingReference::render(ImagePipeline &pipeline, const PhotoItem &photo,
                                             std::stop_token stop) const
{
    PhotoItem unsignedPhoto = photo;
    unsignedPhoto.settings = withoutSignature(photo.settings);
    return pipeline.render(unsignedPhoto, size, std::move(stop));
}

} // namespace tarnovel
