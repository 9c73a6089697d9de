#include "render/DitheredGradient.h"

#include <algorithm>
#include <array>

#include <QLinearGradient>
#include <QPainter>

#include "base/OrderedDither.h"
#include "render/DevicePatch.h"

namespace tarnovel {

namespace {

/// Rows painted at once: a picture that stays in the processor's cache.
constexpr int bandRows = 64;

/// One channel along a row: its level at the row's first pixel, and what each further pixel adds.
struct Slope {
    float first = 0;
    float step = 0;
};

class DiagonalRows {
public:
    DiagonalRows(QSizeF canvas, const QTransform &fromDevice, const QColor &from, const QColor &to)
        : m_fromDevice(fromDevice),
          m_across(canvas.width() / squared(canvas)),
          m_down(canvas.height() / squared(canvas)),
          m_from{255 * from.redF(), 255 * from.greenF(), 255 * from.blueF()},
          m_way{255 * to.redF() - m_from[0], 255 * to.greenF() - m_from[1], 255 * to.blueF() - m_from[2]}
    {
    }

    void fill(QRgb *pixels, int left, int y, int count) const
    {
        // From the canvas's own edge, so that any part of it has the pixels of the whole.
        const double first = share(0, y);
        const double step = share(1, y) - first;
        std::array<Slope, 3> slopes;
        for (size_t i = 0; i < 3; ++i) {
            slopes[i] = {static_cast<float>(m_from[i] + m_way[i] * first),
                         static_cast<float>(m_way[i] * step)};
        }
        std::array<float, ditherSide> thresholds{};
        for (unsigned i = 0; i < ditherSide; ++i) {
            const auto &row = ditherThresholds.at(static_cast<unsigned>(y) % ditherSide);
            thresholds.at(i) =
                (static_cast<float>(row.at((static_cast<unsigned>(left) + i) % ditherSide)) + 0.5F) / 64;
        }
        // Eight at a time, in loops that the compiler makes vectors of.
        for (int done = 0; done < count; done += ditherSide) {
            std::array<QRgb, ditherSide> block{};
            block.fill(qRgb(0, 0, 0));
            for (size_t channel = 0; channel < slopes.size(); ++channel) {
                const auto [start, slope] = slopes[channel];
                const auto shift = static_cast<int>(16 - 8 * channel);
                for (int i = 0; i < ditherSide; ++i) {
                    float value = start + slope * static_cast<float>(left + done + i) +
                                  thresholds[static_cast<size_t>(i)];
                    value = value > 0.F ? value : 0.F;
                    value = value < 255.F ? value : 255.F;
                    block[static_cast<size_t>(i)] |= static_cast<QRgb>(static_cast<int>(value)) << shift;
                }
            }
            const int here = std::min(count - done, ditherSide);
            std::copy_n(block.begin(), here, pixels + done);
        }
    }

private:
    static double squared(QSizeF size) { return size.width() * size.width() + size.height() * size.height(); }

    /// How far along the diagonal the middle of a device pixel lies.
    double share(int x, int y) const
    {
        const QPointF at = m_fromDevice.map(QPointF(x + 0.5, y + 0.5));
        return at.x() * m_across + at.y() * m_down;
    }

    QTransform m_fromDevice;
    double m_across;
    double m_down;
    std::array<float, 3> m_from;
    std::array<float, 3> m_way;
};

} // namespace

void fillDiagonally(QPainter &painter, QSizeF canvas, const QColor &from, const QColor &to)
{
    const QRectF whole({}, canvas);
    const QTransform device = painter.deviceTransform();
    if (device.type() > QTransform::TxScale || whole.isEmpty()) {
        QLinearGradient gradient(whole.topLeft(), whole.bottomRight());
        gradient.setColorAt(0, from);
        gradient.setColorAt(1, to);
        painter.fillRect(whole, gradient);
        return;
    }
    const QRect area = reachablePixels(painter, device.mapRect(whole));
    const DiagonalRows rows(canvas, device.inverted(), from, to);
    QImage band(area.width(), std::min(bandRows, area.height()), QImage::Format_RGB32);
    painter.save();
    painter.setTransform(device.inverted() * painter.transform());
    for (int top = area.top(); top <= area.bottom(); top += bandRows) {
        const int height = std::min(bandRows, area.bottom() + 1 - top);
        for (int y = 0; y < height; ++y) {
            rows.fill(reinterpret_cast<QRgb *>(band.scanLine(y)), area.left(), top + y, area.width());
        }
        painter.drawImage(area.left(), top, band, 0, 0, area.width(), height);
    }
    painter.restore();
}

} // namespace tarnovel
