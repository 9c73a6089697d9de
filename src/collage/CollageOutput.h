#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QImage>
#include <QList>

#include "base/UnclaimedFile.h"
#include "collage/CollageRenderer.h"
#include "model/Session.h"

namespace tarnovel {

class ImagePipeline;

namespace CollageOutput {

/// The long edge of a finished collage, in pixels.
constexpr int longEdge = 2400;

struct RenderOptions {
    /// In pixels.
    int longEdge = CollageOutput::longEdge;
    /// Called with the number of photos drawn so far, before each.
    std::function<void(int)> progress = {};
};

/// Draws the collage from its photos' files, each decoded straight to its cell. `photos` are in slot order.
/// Waits for the image service, so it is not for the interface thread. Throws what the service's futures
/// throw; a PipelineFailure names the photo's file.
QImage render(ImagePipeline &pipeline, const CollageDesign &design, const QList<PhotoItem> &photos,
              const std::stop_token &stop, const RenderOptions &options = {});

/// A finished collage in the library, which no session refers to yet.
struct Saved {
    PhotoItem photo;
    std::shared_ptr<UnclaimedFile> file;
};

/// Renders the collage and writes it into the library, without loss. The same holds as for `render`; a
/// FileError is thrown when the disk refuses, and nothing is left behind then.
Saved save(ImagePipeline &pipeline, const CollageDesign &design, const QList<PhotoItem> &photos,
           const QString &libraryFolder, const std::stop_token &stop);

} // namespace CollageOutput

} // namespace tarnovel
