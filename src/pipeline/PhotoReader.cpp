#include "pipeline/PhotoReader.h"

#include <algorithm>
#include <utility>

#include <QDir>

#include "base/Cancellation.h"
#include "base/FileTrouble.h"
#include "base/Log.h"
#include "imaging/Resampler.h"
#include "pipeline/PlacedPhoto.h"

namespace tarnovel {

namespace {

// A dozen previews, and a whole session of the small ones.
constexpr qsizetype mostPreviewBytes = 64'000'000;
constexpr qsizetype mostSmallBytes = 48'000'000;

} // namespace

std::optional<PictureFault> faultOf(const ImageError &error)
{
    switch (error.cause()) {
    case ImageError::Cause::SmallPreview:
        return PictureFault::SmallPreview;
    case ImageError::Cause::TooLarge:
        return PictureFault::TooLarge;
    case ImageError::Cause::NoDecoder:
        return PictureFault::NoDecoder;
    case ImageError::Cause::Damaged:
        return PictureFault::Damaged;
    case ImageError::Cause::Missing:
    case ImageError::Cause::Unsupported:
        break;
    }
    return std::nullopt;
}

void PhotoReader::Shelf::put(const Remembered &picture)
{
    pictures.push_front(picture);
    bytes += picture.image.sizeInBytes();
    while (bytes > mostBytes && pictures.size() > 1) {
        bytes -= pictures.back().image.sizeInBytes();
        pictures.pop_back();
    }
}

const PhotoReader::Remembered *PhotoReader::Shelf::find(const FileIdentity &photo)
{
    const auto found = std::ranges::find(pictures, photo, &Remembered::photo);
    if (found == pictures.end()) {
        return nullptr;
    }
    pictures.splice(pictures.begin(), pictures, found);
    return &pictures.front();
}

PhotoReader::PhotoReader(QString libraryFolder, PictureMemory memory, const QString &thumbnailFolder)
    : m_libraryFolder(std::move(libraryFolder)),
      m_memory(memory),
      m_decoder(memory == PictureMemory::Kept ? PhotoDecoder::Spare::WhileSlow : PhotoDecoder::Spare::None),
      m_previews{mostPreviewBytes},
      m_small{mostSmallBytes},
      m_thumbnails(thumbnailFolder)
{
}

QString PhotoReader::path(const QString &file) const
{
    return QDir(m_libraryFolder).filePath(file);
}

/// A picture that could not be read, with the cause where that is the file rather than what is in it.
PipelineFailure PhotoReader::failure(const QString &file, FramePicture which, const ImageError &error) const
{
    qCWarning(logImaging) << path(file) << error.what();
    const QString named = which == FramePicture::Photo ? QString() : file;
    const std::optional<PictureFault> fault = faultOf(error);
    const std::optional<FileError> trouble =
        !fault || *fault == PictureFault::Damaged ? fileTrouble(path(file)) : std::nullopt;
    return fault && !trouble ? PipelineFailure(PipelineError::Unreadable, named, which, *fault)
                             : PipelineFailure(PipelineError::Unreadable, named, which, trouble);
}

template<typename Work>
auto PhotoReader::reading(FramePicture which, const QString &file, Work work)
{
    try {
        return work(RegularFile(path(file)));
    } catch (const ImageError &error) {
        throw failure(file, which, error);
    }
}

PhotoFacts PhotoReader::facts(const QString &file, const std::stop_token &stop)
{
    return reading(FramePicture::Photo, file,
                   [&](const RegularFile &photo) { return m_decoder.facts(photo, stop); });
}

QImage PhotoReader::picture(FramePicture which, const QString &file, int maxPixel,
                            const std::stop_token &stop)
{
    return reading(which, file, [&](const RegularFile &photo) {
        return m_memory == PictureMemory::Kept && maxPixel <= previewPixels
                   ? remembered(file, photo, maxPixel, stop)
                   : decoded(photo, maxPixel, stop);
    });
}

QImage PhotoReader::decoded(const RegularFile &photo, int maxPixel, const std::stop_token &stop)
{
    const QSize whole = m_decoder.facts(photo, stop).header.uprightSize();
    // A copy, for it may live on.
    return m_decoder.decode(photo, {PicturePart::whole(whole, maxPixel)}, stop).first().copy();
}

QImage PhotoReader::remembered(const QString &file, const RegularFile &photo, int maxPixel,
                               const std::stop_token &stop)
{
    throwIfCancelled(stop);
    const QSize whole = m_decoder.facts(photo, stop).header.uprightSize();
    const QSize wanted = PicturePart::whole(whole, maxPixel).size;
    const auto fitted = [&wanted](const QImage &image) {
        return image.size() == wanted ? image : resampled(image, image.rect(), wanted);
    };
    for (Shelf *shelf : {&m_small, &m_previews}) {
        const Remembered *known = shelf->find(photo.identity());
        if (known && known->image.width() >= wanted.width() && known->image.height() >= wanted.height()) {
            return fitted(known->image);
        }
    }
    const QSize smallSize = PicturePart::whole(whole, ThumbnailStore::pixels).size;
    if (maxPixel <= ThumbnailStore::pixels && smallSize != whole) {
        const QImage kept = thumbnail(file, photo);
        if (kept.size() == smallSize) {
            m_small.put({photo.identity(), kept});
            return fitted(kept);
        }
    }
    const QImage preview = decoded(photo, previewPixels, stop);
    m_previews.put({photo.identity(), preview});
    const QImage small =
        preview.size() == smallSize ? preview : resampled(preview, preview.rect(), smallSize);
    if (!m_small.find(photo.identity())) {
        m_small.put({photo.identity(), small});
    }
    if (keepsThumbnail(file) && smallSize != whole) {
        m_thumbnails.write(m_thumbnails.path(path(file), photo.identity()), small);
    }
    // The same pixels as from the thumbnail at the next start.
    return fitted(maxPixel <= ThumbnailStore::pixels ? small : preview);
}

/// Those of the library, which will be there at the next start.
bool PhotoReader::keepsThumbnail(const QString &file) const
{
    return m_thumbnails.isKept() && QDir::isRelativePath(file);
}

/// The thumbnail that an earlier start has left; null where there is none. It is the program's own file, for
/// nobody else to write: no decoder stands between.
QImage PhotoReader::thumbnail(const QString &file, const RegularFile &photo) const
{
    const QImage kept =
        keepsThumbnail(file) ? QImage(m_thumbnails.path(path(file), photo.identity()), "PNG") : QImage();
    return kept.hasAlphaChannel() ? kept.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                  : kept.convertToFormat(QImage::Format_RGB32);
}

PhotoReader::Placed PhotoReader::placed(const QString &file, const PhotoPlacement &placement, QSize canvas,
                                        int smallPixels, const std::stop_token &stop)
{
    PlacedParts parts = placed(file, {placedRegion(placement, canvas)}, smallPixels, stop);
    return {parts.photos.first(), parts.small};
}

PhotoReader::PlacedParts PhotoReader::placed(const QString &file, const QList<PlacedRegion> &regions,
                                             int smallPixels, const std::stop_token &stop)
{
    return reading(FramePicture::Photo, file, [&](const RegularFile &photo) {
        const QSize whole = m_decoder.facts(photo, stop).header.uprightSize();
        QList<PicturePart> parts;
        for (const PlacedRegion &region : regions) {
            if (!region.pixels.isEmpty()) {
                const QRectF &part = region.extent;
                parts.append({{part.x() * whole.width(), part.y() * whole.height(),
                               part.width() * whole.width(), part.height() * whole.height()},
                              region.pixels.size()});
            }
        }
        if (smallPixels > 0) {
            parts.append(PicturePart::whole(whole, smallPixels));
        }
        PlacedParts result;
        QList<QImage> images = parts.isEmpty() ? QList<QImage>() : m_decoder.decode(photo, parts, stop);
        result.small = smallPixels > 0 ? images.takeLast() : QImage();
        for (const PlacedRegion &region : regions) {
            result.photos.append(region.pixels.isEmpty() ? PhotoImage()
                                                         : PhotoImage{images.takeFirst(), region.extent});
        }
        return result;
    });
}

} // namespace tarnovel
