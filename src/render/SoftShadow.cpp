#include "render/SoftShadow.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <QPainter>

namespace tarnovel {

namespace {

/// The Gaussian is cut off here: beyond three deviations lies 0.3 % of it.
constexpr double reach = 3;

/// Kernels below this deviation change nothing that eight bits could show.
constexpr double sharp = 0.2;

std::vector<float> gaussian(double sigma)
{
    const double radius = std::ceil(sigma * reach);
    std::vector<float> kernel(static_cast<size_t>(2 * radius) + 1);
    double place = -radius;
    for (float &weight : kernel) {
        weight = static_cast<float>(std::exp(-place * place / (2 * sigma * sigma)));
        place += 1;
    }
    const float sum = std::accumulate(kernel.begin(), kernel.end(), 0.F);
    for (float &weight : kernel) {
        weight /= sum;
    }
    return kernel;
}

/// `padded` is longer than the row by what the kernel reaches to both sides.
void blurRow(const std::vector<float> &padded, std::vector<float> &row, const std::vector<float> &kernel)
{
    std::fill(row.begin(), row.end(), 0.F);
    for (size_t k = 0; k < kernel.size(); ++k) {
        const float weight = kernel[k];
        const float *shifted = padded.data() + k;
        for (size_t x = 0; x < row.size(); ++x) {
            row[x] += weight * shifted[x];
        }
    }
}

/// One pass along the rows that writes its result turned by a diagonal, so that two passes blur both ways.
void blurRowsTransposed(const std::vector<float> &source, std::vector<float> &goal, int width, int height,
                        const std::vector<float> &kernel)
{
    const int radius = static_cast<int>(kernel.size() / 2);
    std::vector<float> padded(static_cast<size_t>(width + 2 * radius), 0.F);
    std::vector<float> row(static_cast<size_t>(width));
    for (int y = 0; y < height; ++y) {
        const auto start = source.begin() + static_cast<ptrdiff_t>(y) * width;
        // Between the corners of a card, the row above is the same.
        if (y == 0 || !std::equal(start, start + width, start - width)) {
            std::copy(start, start + width, padded.begin() + radius);
            blurRow(padded, row, kernel);
        }
        for (int x = 0; x < width; ++x) {
            goal[static_cast<size_t>(x) * static_cast<size_t>(height) + static_cast<size_t>(y)] =
                row[static_cast<size_t>(x)];
        }
    }
}

std::vector<float> blurredMask(const QImage &mask, double sigma)
{
    const int width = mask.width();
    const int height = mask.height();
    std::vector<float> values(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) {
        std::copy_n(mask.constScanLine(y), width, values.begin() + static_cast<ptrdiff_t>(y) * width);
    }
    if (sigma >= sharp) {
        const std::vector<float> kernel = gaussian(sigma);
        std::vector<float> turned(values.size());
        blurRowsTransposed(values, turned, width, height, kernel);
        blurRowsTransposed(turned, values, height, width, kernel);
    }
    return values;
}

QImage colored(const std::vector<float> &mask, QSize size, const QColor &color)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    const float red = color.redF() * color.alphaF();
    const float green = color.greenF() * color.alphaF();
    const float blue = color.blueF() * color.alphaF();
    auto value = mask.begin();
    for (int y = 0; y < size.height(); ++y) {
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x, ++value) {
            const auto component = [&value](float part) {
                return static_cast<int>(std::lround(*value * part));
            };
            pixels[x] = qRgba(component(red), component(green), component(blue), component(color.alphaF()));
        }
    }
    return image;
}

} // namespace

QImage softShadow(const QImage &mask, double sigmaPx, const QColor &color)
{
    return colored(blurredMask(mask, sigmaPx), mask.size(), color);
}

void drawSoftShadow(QPainter &painter, const QPainterPath &shape, const SoftShadow &shadow)
{
    const QPainterPath onDevice = painter.deviceTransform().map(shape).translated(shadow.offsetPx);
    const double margin = std::ceil(shadow.sigmaPx * reach) + 1;
    QRectF seen = onDevice.boundingRect();
    if (painter.hasClipping()) {
        seen &= painter.deviceTransform()
                    .mapRect(painter.clipBoundingRect())
                    .adjusted(-margin, -margin, margin, margin);
    }
    const int border = static_cast<int>(margin);
    const QRect area = seen.toAlignedRect().adjusted(-border, -border, border, border);
    if (seen.isEmpty()) {
        return;
    }
    QImage mask(area.size(), QImage::Format_Alpha8);
    mask.fill(0);
    QPainter maskPainter(&mask);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    maskPainter.translate(-area.topLeft());
    maskPainter.fillPath(onDevice, Qt::black);
    maskPainter.end();

    painter.save();
    painter.setTransform(painter.deviceTransform().inverted() * painter.transform());
    painter.drawImage(area.topLeft(), softShadow(mask, shadow.sigmaPx, shadow.color));
    painter.restore();
}

} // namespace tarnovel
