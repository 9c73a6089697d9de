#include "codecs/Codecs.h"

#include <algorithm>

#include "codecs/VipsDecoder.h"
#include "codecs/VipsRuntime.h"
#include "decoding/FormatLibrary.h"

namespace tarnovel {

namespace {

QByteArray transformed(const PlainPixels &pixels, const QByteArray &profile)
{
    ensureVips();
    const VipsImagePtr source(vips_image_new_from_memory(
        pixels.bytes.constData(), static_cast<size_t>(pixels.bytes.size()), pixels.size.width(),
        pixels.size.height(), pixels.bands, pixels.deep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR));
    if (!source) {
        vips_error_clear();
        return {};
    }
    source->Type = pixels.kind == PlainPixels::Kind::Grey ? VIPS_INTERPRETATION_B_W
                   : pixels.deep                          ? VIPS_INTERPRETATION_RGB16
                                                          : VIPS_INTERPRETATION_sRGB;
    vips_image_set_blob_copy(source.get(), VIPS_META_ICC_NAME, profile.constData(),
                             static_cast<size_t>(profile.size()));
    VipsImage *made = nullptr;
    if (vips_icc_transform(source.get(), &made, "srgb", "embedded", TRUE, "depth", pixels.deep ? 16 : 8,
                           static_cast<void *>(nullptr)) != 0) {
        vips_error_clear();
        return {};
    }
    const VipsImagePtr converted(made);
    size_t bytes = 0;
    const std::unique_ptr<void, GFree> memory(vips_image_write_to_memory(converted.get(), &bytes));
    if (!memory || converted->Bands != std::max(pixels.bands, 3)) {
        vips_error_clear();
        return {};
    }
    return QByteArray(static_cast<const char *>(memory.get()), static_cast<qsizetype>(bytes));
}

class VipsLibrary : public FormatLibrary {
public:
    std::unique_ptr<OpenedPicture> open(const ImageFile &file, const std::stop_token &stop) const override
    {
        return std::make_unique<VipsPicture>(file, stop);
    }
    QByteArray inSrgb(const PlainPixels &pixels, const QByteArray &profile) const override
    {
        return transformed(pixels, profile);
    }
};

} // namespace

void useCodecs()
{
    static const VipsLibrary library;
    setFormatLibrary(library);
}

} // namespace tarnovel
