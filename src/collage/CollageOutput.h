#pragma once

#include <stop_token>

#include <QImage>
#include <QList>

#include "collage/CollageRenderer.h"
#include "model/Session.h"

namespace tarnovel {

class ImagePipeline;

namespace CollageOutput {

/// The long edge of a finished collage, in pixels.
constexpr int longEdge = 2400;

/// Draws the collage from its photos' files, each decoded straight to its cell. `photos` are in slot order.
/// Waits for the image service, so it is not for the interface thread. Throws what the service's futures
/// throw; a PipelineFailure names the photo's file.
QImage render(ImagePipeline &pipeline, const CollageDesign &design, const QList<PhotoItem> &photos,
              const std::stop_token &stop);

} // namespace CollageOutput

} // namespace tarnovel
