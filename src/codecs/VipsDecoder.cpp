#include "codecs/VipsDecoder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include <unistd.h>

#include "base/Cancellation.h"
#include "decoding/PngChunks.h"
#include "decoding/TiffDirectory.h"
#include "imaging/ImageError.h"
#include "imaging/ImageLimits.h"
#include "imaging/PlaneScaler.h"

namespace tarnovel {
namespace {

// What is taken to memory before resampling; larger areas are averaged to whole fractions on the way.
constexpr double mostPixelsInMemory = 64e6;
// Formats and layouts that the libraries decode as a whole: several copies of them stay below a gigabyte.
constexpr qint64 mostWholePixels = 128'000'000;
constexpr qint64 mostWholeBytes = 800'000'000;

[[noreturn]] void throwDamaged()
{
    const QByteArray detail = QByteArray(vips_error_buffer()).trimmed();
    vips_error_clear();
    // The libraries tell a shortage of memory in words alone.
    const bool isShortage = detail.toLower().contains("memory");
    throw ImageError(isShortage ? ImageError::Cause::TooLarge : ImageError::Cause::Damaged,
                     detail.isEmpty() ? QByteArray("cannot be decoded") : detail);
}

/// Takes over what an operation made; throws when it failed. By reference, for the operation may be called in
/// the very expression that passes its result.
VipsImagePtr checked(int failed, VipsImage *const &made)
{
    if (failed != 0) {
        throwDamaged();
    }
    return VipsImagePtr(made);
}

/// The page of a TIFF file that is its picture. Throws for a file of nothing but previews.
int pageOf(const ImageFile &file)
{
    const std::optional<int> page = findTiffPicture(TiffDirectories([&file](qint64 at, qint64 count) {
                                        return file.read(at, count);
                                    })).page;
    // A raw file whose first directory looks like any picture's gives itself away by these two letters.
    constexpr qint64 rawMarkAt = 8;
    if (!page || file.read(rawMarkAt, 2) == "CR") {
        throw ImageError(ImageError::Cause::SmallPreview, "nothing but a preview");
    }
    return *page;
}

bool isReadWhole(const ImageFile &file)
{
    return file.format() == PictureFormat::Heif || file.format() == PictureFormat::Avif ||
           file.format() == PictureFormat::WebP;
}

VipsSourcePtr sourceOf(const ImageFile &file)
{
    if (file.format() == PictureFormat::Png) {
        checkPngChunkSizes(file);
    }
    if (!isReadWhole(file) && !file.isInMemory()) {
        // A descriptor's copies share its position.
        lseek(file.descriptor(), 0, SEEK_SET);
        return VipsSourcePtr(vips_source_new_from_descriptor(file.descriptor()));
    }
    const QByteArray &bytes = file.bytes();
    return VipsSourcePtr(vips_source_new_from_memory(bytes.constData(), static_cast<size_t>(bytes.size())));
}

VipsImagePtr load(const ImageFile &file, const std::stop_token &stop)
{
    const int page = file.format() == PictureFormat::Tiff ? pageOf(file) : 0;
    ensureVips();
    throwIfCancelled(stop);
    const VipsSourcePtr source = sourceOf(file);
    if (!source) {
        throwDamaged();
    }
    VipsImage *made = nullptr;
    int failed = 0;
    // The loaders of JPEG and PNG files go on after some faults whatever they are told here: the data of
    // those has been checked before.
    const auto call = [&](auto loader) {
        failed = loader(source.get(), &made, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", VIPS_FAIL_ON_ERROR,
                        static_cast<void *>(nullptr));
    };
    switch (file.format()) {
    case PictureFormat::Jpeg:
        call(vips_jpegload_source);
        break;
    case PictureFormat::Png:
        call(vips_pngload_source);
        break;
    case PictureFormat::Heif:
    case PictureFormat::Avif:
        call(vips_heifload_source);
        break;
    case PictureFormat::WebP:
        call(vips_webpload_source);
        break;
    case PictureFormat::Tiff:
        failed = vips_tiffload_source(source.get(), &made, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                      VIPS_FAIL_ON_ERROR, "page", page, static_cast<void *>(nullptr));
        break;
    }
    return checked(failed, made);
}

bool isInterlaced(const VipsImage *image)
{
    int interlaced = 0;
    return vips_image_get_typeof(image, "interlaced") != 0 &&
           vips_image_get_int(image, "interlaced", &interlaced) == 0 && interlaced != 0;
}

void checkWholeDecode(const ImageFile &file, VipsImage *image)
{
    const qint64 pixels = qint64(image->Xsize) * image->Ysize;
    const qint64 bytes = pixels * qint64(VIPS_IMAGE_SIZEOF_PEL(image));
    if (isReadWhole(file) ? pixels > mostWholePixels : isInterlaced(image) && bytes > mostWholeBytes) {
        throw ImageError(ImageError::Cause::TooLarge, "too large to be decoded as a whole");
    }
}

QByteArray blobOf(VipsImage *image, const char *name)
{
    const void *data = nullptr;
    size_t length = 0;
    if (vips_image_get_typeof(image, name) == 0 || vips_image_get_blob(image, name, &data, &length) != 0) {
        return {};
    }
    return QByteArray(static_cast<const char *>(data), static_cast<qsizetype>(length));
}

bool isRgb(VipsInterpretation kind)
{
    return kind == VIPS_INTERPRETATION_sRGB || kind == VIPS_INTERPRETATION_RGB16 ||
           kind == VIPS_INTERPRETATION_RGB;
}

/// Whether the pixels are to stay in 16 bits until their profile has been applied.
bool staysDeep(VipsImage *image, const QByteArray &profile)
{
    return image->BandFmt == VIPS_FORMAT_USHORT && image->Bands >= 3 && !profile.isEmpty() &&
           isRgb(vips_image_guess_interpretation(image));
}

/// Drops what there is beside red, green, blue and alpha.
VipsImagePtr fourBands(VipsImagePtr image)
{
    if (image->Bands > 4) {
        VipsImage *made = nullptr;
        const int failed = vips_extract_band(image.get(), &made, 0, "n", 4, static_cast<void *>(nullptr));
        image = checked(failed, made);
    }
    return image;
}

/// A picture of red, green, blue and perhaps alpha in bytes, still in the profile `profile` if that is not
/// empty.
VipsImagePtr toRgbBytes(VipsImagePtr image, QByteArray &profile)
{
    const VipsInterpretation kind = vips_image_guess_interpretation(image.get());
    const bool inks = kind == VIPS_INTERPRETATION_CMYK;
    if (inks || (!isRgb(kind) && !profile.isEmpty())) {
        // A profile for grey or printing inks means nothing to the RGB pixels: it is applied here. The
        // blackest ink is to be the screen's black; without a profile, common ones for offset printing are
        // assumed.
        profile.clear();
        VipsImage *made = nullptr;
        if (vips_icc_transform(image.get(), &made, "srgb", "embedded", TRUE, "input_profile",
                               inks ? "cmyk" : "none", "black_point_compensation", TRUE, "depth", 8,
                               static_cast<void *>(nullptr)) == 0) {
            image.reset(made);
        } else {
            vips_error_clear();
        }
    }
    if (image->Type != VIPS_INTERPRETATION_sRGB || image->BandFmt != VIPS_FORMAT_UCHAR || image->Bands < 3) {
        VipsImage *made = nullptr;
        const int failed =
            vips_colourspace(image.get(), &made, VIPS_INTERPRETATION_sRGB, "source_space",
                             vips_image_guess_interpretation(image.get()), static_cast<void *>(nullptr));
        image = checked(failed, made);
    }
    if (image->BandFmt != VIPS_FORMAT_UCHAR) {
        VipsImage *made = nullptr;
        image = checked(vips_cast_uchar(image.get(), &made, static_cast<void *>(nullptr)), made);
    }
    image = fourBands(std::move(image));
    if (image->Bands < 3) {
        throw ImageError(ImageError::Cause::Unsupported, "no colour channels");
    }
    return image;
}

/// Averages `factor` × `factor` pixels to one; colours weigh by their alpha.
VipsImagePtr averaged(VipsImagePtr image, int factor)
{
    const bool alpha = vips_image_hasalpha(image.get()) != 0;
    const VipsBandFormat format = image->BandFmt;
    VipsImage *made = nullptr;
    if (alpha) {
        image = checked(vips_premultiply(image.get(), &made, static_cast<void *>(nullptr)), made);
    }
    image = checked(vips_shrink(image.get(), &made, factor, factor, static_cast<void *>(nullptr)), made);
    if (alpha) {
        image = checked(vips_unpremultiply(image.get(), &made, static_cast<void *>(nullptr)), made);
        image = checked(vips_cast(image.get(), &made, format, static_cast<void *>(nullptr)), made);
    }
    return image;
}

/// Stops an evaluation that nobody waits for any more.
void watch(VipsImage *image, const std::stop_token &stop)
{
    if (!stop.stop_possible()) {
        return;
    }
    vips_image_set_progress(image, TRUE);
    const auto look = +[](VipsImage *running, void *, void *token) {
        if (static_cast<const std::stop_token *>(token)->stop_requested()) {
            vips_image_set_kill(running, TRUE);
        }
    };
    g_signal_connect(image, "eval", G_CALLBACK(look), const_cast<std::stop_token *>(&stop));
}

/// Premultiplies straight alpha in place. False when every pixel is opaque.
template<typename Sample>
bool premultiply(Sample *pixels, qint64 count)
{
    constexpr unsigned full = std::numeric_limits<Sample>::max();
    bool transparent = false;
    for (qint64 i = 0; i < count; ++i) {
        Sample *pixel = pixels + i * 4;
        const unsigned alpha = pixel[3];
        if (alpha != full) {
            transparent = true;
            for (int channel = 0; channel < 3; ++channel) {
                pixel[channel] = static_cast<Sample>((pixel[channel] * alpha + full / 2) / full);
            }
        }
    }
    return transparent;
}

/// The pixels in memory, which are premultiplied on the way, as the resampler takes them.
PackedSource packedSource(VipsImage *image, void *memory)
{
    const bool deep = image->BandFmt == VIPS_FORMAT_USHORT;
    const int sample = deep ? 2 : 1;
    const qint64 count = qint64(image->Xsize) * image->Ysize;
    const bool transparent = image->Bands == 4 && (deep ? premultiply(static_cast<uint16_t *>(memory), count)
                                                        : premultiply(static_cast<uint8_t *>(memory), count));
    PackedSource packed;
    packed.bits = static_cast<const uint8_t *>(memory);
    packed.size = QSize(image->Xsize, image->Ysize);
    packed.step = image->Bands * sample;
    packed.stride = ptrdiff_t(image->Xsize) * packed.step;
    packed.offset = {0, sample, 2 * sample, transparent ? 3 * sample : -1};
    packed.deep = deep;
    return packed;
}

/// The whole pixels of the picture that the parts need, with what the filter reads beside them.
QRect neededPixels(QSize picture, const QList<PicturePart> &parts)
{
    QRect needed;
    for (const auto &[region, size] : parts) {
        const AxisPlan x = planAxis(picture.width(), region.x(), region.width(), size.width());
        const AxisPlan y = planAxis(picture.height(), region.y(), region.height(), size.height());
        needed |= QRect(QPoint(x.windowBegin, y.windowBegin), QPoint(x.windowEnd - 1, y.windowEnd - 1)) &
                  QRect(QPoint(), picture);
    }
    return needed.isEmpty() ? QRect(QPoint(), picture) : needed;
}

} // namespace

VipsPicture::VipsPicture(const ImageFile &file, const std::stop_token &stop)
    : m_file(file), m_image(load(file, stop))
{
    checkPictureSize(size());
    checkWholeDecode(file, m_image.get());
}

QSize VipsPicture::size() const
{
    return {m_image->Xsize, m_image->Ysize};
}

int VipsPicture::orientation() const
{
    const bool turned = m_file.format() == PictureFormat::Heif || m_file.format() == PictureFormat::Avif;
    return turned ? 1 : vips_image_get_orientation(m_image.get());
}

QByteArray VipsPicture::exif() const
{
    const QByteArray exif = blobOf(m_image.get(), VIPS_META_EXIF_NAME);
    const QByteArray heading("Exif\0\0", 6);
    return exif.startsWith(heading) ? exif.mid(heading.size()) : exif;
}

VipsPicture::Pixels VipsPicture::decode(const QList<PicturePart> &parts, const std::stop_token &stop)
{
    ensureVips();
    VipsImagePtr image = std::move(m_image);
    const QSize picture(image->Xsize, image->Ysize);
    Pixels result;
    result.profile = blobOf(image.get(), VIPS_META_ICC_NAME);

    const QRect needed = neededPixels(picture, parts);
    VipsImage *made = nullptr;
    if (needed.size() != picture) {
        const int failed = vips_extract_area(image.get(), &made, needed.left(), needed.top(), needed.width(),
                                             needed.height(), static_cast<void *>(nullptr));
        image = checked(failed, made);
    }
    const bool deep = staysDeep(image.get(), result.profile);
    const double pixels = double(needed.width()) * needed.height() * (deep ? 2 : 1);
    const int factor = std::min({static_cast<int>(std::ceil(std::sqrt(pixels / mostPixelsInMemory))),
                                 needed.width(), needed.height()});
    if (factor > 1) {
        image = averaged(std::move(image), factor);
    }
    image = deep ? fourBands(std::move(image)) : toRgbBytes(std::move(image), result.profile);

    watch(image.get(), stop);
    size_t bytes = 0;
    const std::unique_ptr<void, GFree> memory(vips_image_write_to_memory(image.get(), &bytes));
    throwIfCancelled(stop);
    if (!memory) {
        throwDamaged();
    }
    const PackedSource source = packedSource(image.get(), memory.get());
    const double scale = 1.0 / std::max(factor, 1);
    for (const auto &[region, size] : parts) {
        const QPointF corner = region.topLeft() - QPointF(needed.topLeft());
        result.images.append(
            scalePacked(source, QRectF(corner * scale, region.size() * scale), size, stop, DeepPixels::Kept));
    }
    return result;
}

} // namespace tarnovel
