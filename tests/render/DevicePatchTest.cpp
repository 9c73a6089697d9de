#include "render/DevicePatch.h"

#include <cmath>

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include "render/TestPictures.h"

namespace tarnovel {
namespace {

template<typename Draw>
QImage painted(Draw draw)
{
    QImage image(240, 240, QImage::Format_RGB32);
    image.fill(QColor(40, 10, 90));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    return image;
}

int largestDifference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            largest = std::max({largest, std::abs(p.red() - q.red()), std::abs(p.green() - q.green()),
                                std::abs(p.blue() - q.blue())});
        }
    }
    return largest;
}

const QColor white(252, 252, 252);
const QColor rimGrey = QColor::fromRgbF(0.72F, 0.72F, 0.72F, 0.25F);

TEST(DevicePatch, RimmedRectangleLooksLikeAPaintedOne)
{
    // As perforations are at 1, 3, 20, 60 and 107 pixels a millimetre, at odd fractions of a pixel.
    for (const double scale : {1.0, 3.0, 20.0, 60.0, 107.0}) {
        for (const QPointF &at : {QPointF(10, 12), QPointF(10.37, 11.81), QPointF(9.5, 12.5)}) {
            const QRectF rect(at.x(), at.y(), 1.981 * std::min(scale, 100.0), 2.1 * std::min(scale, 100.0));
            const QImage fast = painted([&](QPainter &painter) {
                drawRimmedRect(painter, {rect, 0.51 * scale, white, rimGrey, 0.035 * scale});
            });
            const QImage reference = painted([&](QPainter &painter) {
                painter.setBrush(white);
                painter.setPen(QPen(rimGrey, 0.035 * scale));
                painter.drawRoundedRect(rect, 0.51 * scale, 0.51 * scale);
            });
            EXPECT_LE(largestDifference(fast, reference), 40) << scale;
            EXPECT_GT(psnr(fast, reference), 42) << scale;
        }
    }
}

TEST(DevicePatch, GlowIsAFaintLayerUnderThePrint)
{
    QPainterPath path;
    path.addEllipse(QRectF(20.3, 30.7, 110, 60));
    path.addRect(QRectF(180.5, 100.25, 30, 30));
    const QColor amber = QColor::fromRgbF(0.77F, 0.65F, 0.38F, 0.92F);
    const QImage fast =
        painted([&](QPainter &painter) { glowingPatch(painter, path, amber, 0.16).draw(painter); });
    const QImage reference = painted([&](QPainter &painter) {
        QColor glow = amber;
        glow.setAlphaF(amber.alphaF() * 0.16F);
        painter.fillPath(path, glow);
        painter.fillPath(path, amber);
    });
    EXPECT_LE(largestDifference(fast, reference), 3);
}

TEST(DevicePatch, ABoxThinnerThanAPixelCoversWhatItCovers)
{
    // A fifth of a pixel, on one pixel and across two.
    for (const double left : {50.3, 50.9}) {
        const QImage image = painted(
            [&](QPainter &painter) { boxPatch(painter, QRectF(left, 60, 0.2, 5), Qt::white).draw(painter); });
        double added = 0;
        for (int x = 48; x < 54; ++x) {
            added += image.pixelColor(x, 62).green() - 10;
        }
        EXPECT_NEAR(added, 245 * 0.2, 2);
    }
}

TEST(DevicePatch, NothingIsMadeBeyondTheDeviceOrTheClip)
{
    const QImage image = painted([&](QPainter &painter) {
        EXPECT_TRUE(boxPatch(painter, QRectF(500, 500, 10, 10), Qt::white).image.isNull());
        painter.setClipRect(QRect(0, 0, 100, 100));
        QPainterPath path;
        path.addRect(QRectF(-1e6, -1e6, 2e6, 2e6));
        const DevicePatch patch = glowingPatch(painter, path, Qt::white, 0.16);
        EXPECT_LE(patch.image.width(), 101);
        patch.draw(painter);
    });
    EXPECT_EQ(image.pixelColor(99, 99), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(101, 101), QColor(40, 10, 90));
}

} // namespace
} // namespace tarnovel
