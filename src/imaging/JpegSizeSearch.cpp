#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "base/Cancellation.h"
#include "imaging/ImageEncoder.h"
#include "imaging/JpegSizeSample.h"
#include "imaging/QualityBisection.h"

namespace tarnovel {

JpegSearchResult searchJpegQuality(const QImage &image, qint64 limit, const std::stop_token &stop)
{
    JpegEncoder encoder(image);
    std::optional<JpegSizeSample> sample;
    std::map<int, QByteArray> fitting;
    QualitySizes sizes;
    sizes.pixels = qint64(image.width()) * image.height();
    sizes.encoded = [&](int quality) {
        throwIfCancelled(stop);
        QByteArray bytes = encoder.encode(quality / 100.0);
        const qint64 size = bytes.size();
        if (size <= limit) {
            fitting[quality] = std::move(bytes);
        }
        return size;
    };
    sizes.guessed = [&](int quality) {
        throwIfCancelled(stop);
        if (!sample) {
            sample.emplace(encoder.image());
        }
        // Most qualities are far from the limit, and a part of the sample shows it.
        constexpr size_t share = 8;
        constexpr double far = 1.5;
        const JpegSizeSample::Estimate rough = sample->estimate(quality, share);
        if (rough.bytes > far * static_cast<double>(limit) ||
            rough.bytes * far < static_cast<double>(limit)) {
            return QualitySizes::Guess{rough.bytes, rough.error / std::sqrt(double(share)), true};
        }
        const JpegSizeSample::Estimate estimate = sample->estimate(quality);
        return QualitySizes::Guess{estimate.bytes, estimate.error};
    };
    QualityBisection bisection(std::move(sizes), limit);
    const std::optional<double> quality = bisection.run();
    if (!quality) {
        return {std::nullopt, 0, bisection.encodings()};
    }
    return {fitting.at(static_cast<int>(std::lround(*quality * 100))), *quality, bisection.encodings()};
}

} // namespace tarnovel
