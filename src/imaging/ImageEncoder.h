#pragma once

#include <memory>
#include <optional>
#include <stop_token>

#include <QByteArray>
#include <QImage>

namespace tarnovel {

/// Encodes one opaque picture, at as many qualities as are asked for; the colour conversion is done once.
/// The files hold the pixels and a small sRGB profile, and no metadata.
class JpegEncoder {
public:
    explicit JpegEncoder(const QImage &image);
    ~JpegEncoder();
    JpegEncoder(const JpegEncoder &) = delete;
    JpegEncoder &operator=(const JpegEncoder &) = delete;

    /// `quality` from 0 to 1, which the library takes in whole hundredths. Below 0.9 colour is stored at half
    /// the resolution both ways (4:2:0), from there on at the full one (4:4:4). Throws an std::bad_alloc at
    /// most.
    QByteArray encode(double quality);

    /// Whether colour is stored at the full resolution.
    static bool storesColourInFull(double quality);

    /// The picture as it is encoded: 32 bits a pixel, blue first.
    const QImage &image() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// For a picture that is encoded once: without planes of its own in between. From 0.9 on the same file as
/// JpegEncoder gives; below, odd sides may end in other pixels.
QByteArray encodeJpeg(const QImage &image, double quality);

/// What a search for the best quality under a size limit came to.
struct JpegSearchResult {
    /// None when even quality 0.05 does not fit.
    std::optional<QByteArray> bytes;
    double quality = 0;
    /// How many times the picture was encoded.
    int encodings = 0;
};

/// The encoding at 0.95 when it has at most `limit` bytes; else the best that seven halvings of 0.05…0.95
/// find, where a quality that fits raises the lower end. Throws OperationCancelled between encodings.
JpegSearchResult searchJpegQuality(const QImage &image, qint64 limit, const std::stop_token &stop = {});

/// A PNG at a fast compression level that says that it is sRGB. Opaque images give RGB, others RGBA. Throws
/// OperationCancelled between rows, and an std::bad_alloc at most.
QByteArray encodePng(const QImage &image, const std::stop_token &stop = {});

} // namespace tarnovel
