#pragma once

#include <stop_token>

#include <QByteArray>
#include <QImage>
#include <QString>

#include "decoding/PhotoFile.h"
#include "imaging/Pictures.h"

namespace tarnovel::test {

struct JpegOptions {
    int quality = 95;
    int horizontal = 1;
    int vertical = 1;
    bool grey = false;
    bool progressive = false;
    bool storedAsRgb = false;
};
QByteArray jpeg(const QImage &image, const JpegOptions &options = {});
/// The file with a marker segment put after its first two bytes.
QByteArray withSegment(const QByteArray &file, int marker, const QByteArray &content);

/// One entry of an EXIF directory; the value bytes are little-endian.
struct ExifEntry {
    quint16 tag;
    quint16 type;
    quint32 count;
    QByteArray value;
};
/// A little-endian TIFF block: a first directory, and a photo directory.
QByteArray exifBlock(QList<ExifEntry> first, const QList<ExifEntry> &photo = {});
QByteArray orientationBlock(int orientation);
QByteArray withExif(const QByteArray &jpegFile, const QByteArray &block);
/// A raw file (RW2) whose camera's picture this is.
QByteArray rawFile(const QByteArray &jpegFile);
/// The PNG file with a chunk put after its header.
QByteArray withChunk(const QByteArray &pngFile, const QByteArray &type, const QByteArray &content);

/// A file written by the picture library; the name's ending and what follows it in brackets choose how.
/// `bands` 1…4 are taken from grey, grey and alpha, RGB and RGBA; `depth` is 8 or 16.
struct SaveOptions {
    int bands = 3;
    int depth = 8;
    int orientation = 1;
    bool cmyk = false;
    /// What the camera wrote, as in a JPEG file's segment behind its heading; none when empty.
    QByteArray exif = {};
};
void save(const QImage &image, const QString &path, const QString &brackets = {},
          const SaveOptions &options = {});

/// The picture of a file, read as the decoder reads it.
QImage decodeImage(const QString &path, int maxPixel, const std::stop_token &stop = {});
QImage decodeImageRegion(const QString &path, const QRectF &region, QSize size,
                         const std::stop_token &stop = {});
ImageHeader readImageHeader(const QString &path);
CaptureMetadata readCaptureMetadata(const QString &path);

QString written(const QString &path, const QByteArray &bytes);
QByteArray contents(const QString &path);

} // namespace tarnovel::test
