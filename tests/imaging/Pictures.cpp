#include "imaging/Pictures.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarnovel::test {
namespace {

double lanczos(double x)
{
    const double at = std::abs(x);
    if (at < 1e-9) {
        return 1;
    }
    return at >= 3 ? 0 : 3 * std::sin(M_PI * at) * std::sin(M_PI * at / 3) / (M_PI * M_PI * at * at);
}

/// Resamples rows of `length` samples of four channels, `stride` doubles apart, along one axis.
std::vector<double> resampleAxis(const std::vector<double> &from, int lines, int length, double start,
                                 double span, int target)
{
    std::vector<double> to(static_cast<size_t>(lines) * static_cast<size_t>(target) * 4);
    const double step = span / target;
    const double wide = std::max(step, 1.0);
    for (int i = 0; i < target; ++i) {
        const double centre = start + (i + 0.5) * step;
        const int first = static_cast<int>(std::floor(centre - 3 * wide));
        const int last = static_cast<int>(std::ceil(centre + 3 * wide));
        std::vector<double> weights;
        double sum = 0;
        for (int k = first; k <= last; ++k) {
            weights.push_back(lanczos((k + 0.5 - centre) / wide));
            sum += weights.back();
        }
        for (int line = 0; line < lines; ++line) {
            for (int channel = 0; channel < 4; ++channel) {
                double value = 0;
                for (int k = first; k <= last; ++k) {
                    const int at = std::clamp(k, 0, length - 1);
                    value += weights[static_cast<size_t>(k - first)] *
                             from[static_cast<size_t>((line * length + at) * 4 + channel)];
                }
                to[static_cast<size_t>((i * lines + line) * 4 + channel)] = value / sum;
            }
        }
    }
    return to; // transposed: the next pass runs along the other axis
}
} // namespace

QImage texture(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const auto wave = [&](double dx, double dy, double phase) {
                return std::sin(dx * x + dy * y + phase);
            };
            const double light = 128 + 50 * wave(0.02, 0.031, 0) + 25 * wave(0.21, -0.13, 1) +
                                 18 * wave(0.7 + x * 0.0007, 0.4, 2) + 12 * wave(0.3, 1.3, 0.5);
            const auto level = [&](double offset) {
                return static_cast<int>(std::clamp(std::lround(light + offset), 0L, 255L));
            };
            image.setPixel(x, y, qRgb(level(20 * wave(0.05, 0, 0)), level(0), level(25 * wave(0, 0.06, 1))));
        }
    }
    return image;
}

QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const bool right = x * 2 >= size.width();
            const bool low = y * 2 >= size.height();
            image.setPixel(x, y, low ? (right ? 0xffffff00 : 0xff0000ff) : (right ? 0xff00ff00 : 0xffff0000));
        }
    }
    return image;
}

QImage lanczosReference(const QImage &image, const QRectF &region, QSize size)
{
    std::vector<double> samples;
    samples.reserve(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height()) * 4);
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            samples.insert(samples.end(), {double(qRed(row[x])), double(qGreen(row[x])),
                                           double(qBlue(row[x])), double(qAlpha(row[x]))});
        }
    }
    samples = resampleAxis(samples, image.height(), image.width(), region.x(), region.width(), size.width());
    samples = resampleAxis(samples, size.width(), image.height(), region.y(), region.height(), size.height());
    QImage result(size, image.format());
    size_t at = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x, at += 4) {
            const auto level = [&](size_t channel) {
                return static_cast<int>(std::clamp(std::lround(samples[at + channel]), 0L, 255L));
            };
            reinterpret_cast<QRgb *>(result.scanLine(y))[x] = qRgba(level(0), level(1), level(2), level(3));
        }
    }
    return result;
}

double psnr(const QImage &one, const QImage &other)
{
    return psnr(one, other, one.rect());
}

double psnr(const QImage &one, const QImage &other, const QRect &area)
{
    if (one.size() != other.size() || one.isNull() || one.depth() != 32 || other.depth() != 32) {
        return 0;
    }
    const int channels = one.hasAlphaChannel() && other.hasAlphaChannel() ? 4 : 3;
    double sum = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            for (int channel = 0; channel < channels; ++channel) {
                const double difference = double(one.constScanLine(y)[x * 4 + channel]) -
                                          double(other.constScanLine(y)[x * 4 + channel]);
                sum += difference * difference;
            }
        }
    }
    const double mean = sum / (double(area.width()) * area.height() * channels);
    return mean == 0 ? 99 : 10 * std::log10(255 * 255 / mean);
}

} // namespace tarnovel::test
