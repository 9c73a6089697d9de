#pragma once

#include "codecs/VipsRuntime.h"
#include "decoding/FormatLibrary.h"

namespace tarnovel {

class VipsPicture : public OpenedPicture {
public:
    /// Throws what FormatLibrary::open throws.
    explicit VipsPicture(const ImageFile &file, const std::stop_token &stop = {});

    QSize size() const override;
    int orientation() const override;
    QByteArray exif() const override;
    Pixels decode(const QList<PicturePart> &parts, const std::stop_token &stop) override;

private:
    const ImageFile &m_file;
    VipsImagePtr m_image;
};

} // namespace tarnovel
