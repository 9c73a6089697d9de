#include "collage/CollageOutput.h"

#include <QPainter>

#include "pipeline/ImagePipeline.h"
#include "pipeline/PipelineError.h"

namespace tarnovel::CollageOutput {

QImage render(ImagePipeline &pipeline, const CollageDesign &design, const QList<PhotoItem> &photos,
              const std::stop_token &stop, const RenderOptions &options)
{
    const CollagePlan plan = CollagePlan::of(design, options.longEdge);
    std::map<int, QSizeF> sizes;
    std::map<int, PhotoImage> images;
    for (const auto &[slot, rect] : plan.layout.cells) {
        if (slot >= photos.size() || slot >= design.cells.size()) {
            continue;
        }
        if (options.progress) {
            options.progress(static_cast<int>(images.size()));
        }
        const PhotoItem &photo = photos.at(slot);
        sizes[slot] = photo.size();
        try {
            images[slot] =
                pipeline
                    .readPlaced(photo.file, cellPlacement(design.cells.at(slot), photo.size(), rect),
                                plan.size, stop)
                    .result();
        } catch (const PipelineFailure &failure) {
            throw failure.of(photo.file);
        }
    }
    QImage canvas(plan.size, QImage::Format_RGB32);
    QPainter painter(&canvas);
    CollageRenderer::draw(painter, design, plan, sizes, images);
    return canvas;
}

Saved save(ImagePipeline &pipeline, const CollageDesign &design, const QList<PhotoItem> &photos,
           const QString &libraryFolder, const std::stop_token &stop)
{
    // A PNG: the collage will be framed and encoded once more.
    const ExportOptions options{.png = true};
    const ExportedFile made =
        pipeline.exportImage(render(pipeline, design, photos, stop), options, stop).result();
    const ImportedFile imported = ImportedFile::receive(made.path, libraryFolder);
    Saved saved;
    saved.file = std::make_shared<UnclaimedFile>(libraryFolder + u'/' + imported.file);
    saved.photo = pipeline.inspect(imported, ImagePipeline::TestDecode::No, stop).result();
    return saved;
}

} // namespace tarnovel::CollageOutput
