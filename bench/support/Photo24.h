#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace tarnovel::bench {

constexpr QSize photoSize(6000, 4000);

enum class Photo24 { Camera, Progressive, FullColour };

/// A photo of 24 megapixels as a camera stores it (4:2:2, quality 94), or as other programs may: fine texture
/// and noise, as grass has them.
QByteArray photo24(Photo24 kind = Photo24::Camera);

/// Writes it; ends the program when the disk refuses.
void writePhoto24(const QString &path, Photo24 kind = Photo24::Camera);

/// Decodes a JPEG to BGRX with nothing but the codec library and fresh memory.
void floorDecode(const QByteArray &jpeg, QSize size);
/// Encodes a picture at 0.95 with nothing but the codec library.
void floorEncode(const QImage &canvas);

} // namespace tarnovel::bench
