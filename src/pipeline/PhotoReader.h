#pragma once

#include <list>
#include <stop_token>

#include <QString>

#include "decoder_client/PhotoDecoder.h"
#include "pipeline/PipelineError.h"
#include "pipeline/ThumbnailStore.h"
#include "render/CompositionRenderer.h"

namespace tarnovel {

struct PlacedRegion;

/// Whether decoded photos are remembered.
enum class PictureMemory {
    /// As the window wants it: a photo is decoded once, in the size of its preview, and all smaller pictures
    /// of
    /// it are made from that.
    Kept,
    /// Each picture is decoded in the size that is asked for.
    None,
};

/// Reads the photos and the other pictures of one library, through a decoder of its own. It belongs to one
/// thread at a time. Everything throws PipelineFailure and OperationCancelled.
class PhotoReader {
public:
    /// In `thumbnailFolder`, thumbnails are kept from start to start; nowhere where it is empty.
    PhotoReader(QString libraryFolder, PictureMemory memory, const QString &thumbnailFolder = {});

    /// The longer side of a photo's preview.
    static constexpr int previewPixels = 1400;

    PhotoFacts facts(const QString &file, const std::stop_token &stop);

    /// The upright picture, its longer side at most `maxPixel`. A failure names it, unless it is the photo
    /// itself.
    QImage picture(FramePicture which, const QString &file, int maxPixel, const std::stop_token &stop);

    struct Placed {
        PhotoImage photo;
        /// The whole photo, its longer side at most as long as was asked for; null for 0.
        QImage small;
    };
    /// The part of a photo that a canvas shows, with its pixels on the canvas's, and the whole photo small,
    /// from one decoding. The part is lent: it is to be drawn soon.
    Placed placed(const QString &file, const PhotoPlacement &placement, QSize canvas, int smallPixels,
                  const std::stop_token &stop);

    struct PlacedParts {
        /// In the order of the regions.
        QList<PhotoImage> photos;
        QImage small;
    };
    /// The same for several canvases, from one decoding.
    PlacedParts placed(const QString &file, const QList<PlacedRegion> &regions, int smallPixels,
                       const std::stop_token &stop);

    /// Gives the memory of lent pictures back.
    void rest() { m_decoder.rest(); }

    /// Removes the thumbnails of photos that have gone from the library.
    void pruneThumbnails() const { m_thumbnails.prune(m_libraryFolder); }

    QString path(const QString &file) const;

private:
    struct Remembered {
        FileIdentity photo;
        QImage image;
    };
    /// Pictures of one size, the last used first.
    struct Shelf {
        qsizetype mostBytes;
        qsizetype bytes = 0;
        std::list<Remembered> pictures = {};

        void put(const Remembered &picture);
        const Remembered *find(const FileIdentity &photo);
    };

    QImage decoded(const RegularFile &photo, int maxPixel, const std::stop_token &stop);
    QImage remembered(const QString &file, const RegularFile &photo, int maxPixel,
                      const std::stop_token &stop);
    bool keepsThumbnail(const QString &file) const;
    QImage thumbnail(const QString &file, const RegularFile &photo) const;
    PipelineFailure failure(const QString &file, FramePicture which, const ImageError &error) const;
    template<typename Work>
    auto reading(FramePicture which, const QString &file, Work work);

    const QString m_libraryFolder;
    const PictureMemory m_memory;
    PhotoDecoder m_decoder;
    Shelf m_previews;
    Shelf m_small;
    ThumbnailStore m_thumbnails;
};

/// What a person is told of a picture error beyond "unreadable", where there is more to say.
std::optional<PictureFault> faultOf(const ImageError &error);

} // namespace tarnovel
