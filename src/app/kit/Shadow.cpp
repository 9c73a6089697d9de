#include "app/kit/Shadow.h"

#include <cmath>

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include "app/kit/Theme.h"
#include "render/SoftShadow.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

struct Look {
    double offset;
    /// As in a style sheet: twice the standard deviation.
    double blur;
    double lightAlpha;
    double darkAlpha;
    /// A second, tight shadow under the edge.
    double edgeAlpha;
};

Look look(Elevation elevation)
{
    switch (elevation) {
    case Elevation::Frame:
        return {16, 40, 0.12, 0.50, 0.08};
    case Elevation::Popover:
        return {8, 32, 0.16, 0.45, 0};
    case Elevation::Sheet:
        return {24, 64, 0.22, 0.60, 0};
    }
    return {8, 32, 0.16, 0.45, 0};
}

/// How far the blur is seen, in logical pixels.
int reach(const Look &shadow)
{
    return static_cast<int>(std::ceil(shadow.blur * 1.25));
}

QPixmap drawn(const Look &shadow, double radius, double ratio)
{
    const int margin = reach(shadow);
    const int corner = margin + static_cast<int>(std::ceil(radius)) + margin;
    const QSize size(2 * corner + 2, 2 * corner + 2);
    QImage image(size * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QRectF box = QRectF(QPointF(), QSizeF(size)).adjusted(margin, margin, -margin, -margin);
    QPainterPath shape;
    shape.addRoundedRect(box, radius, radius);
    QColor shade = Qt::black;
    shade.setAlphaF(static_cast<float>(theme().dark ? shadow.darkAlpha : shadow.lightAlpha));
    drawSoftShadow(painter, shape, {.color = shade, .sigmaPx = shadow.blur / 2 * ratio, .offsetPx = {}});
    painter.end();
    return QPixmap::fromImage(image);
}

} // namespace

void drawShadow(QPainter &painter, const QRectF &rect, double radius, Elevation elevation)
{
    static QHash<QString, QPixmap> cache;
    const Look shadow = look(elevation);
    const double ratio = painter.device()->devicePixelRatioF();
    const QString key =
        u"%1 %2 %3 %4"_s.arg(static_cast<int>(elevation)).arg(radius).arg(ratio).arg(theme().dark);
    auto place = cache.find(key);
    if (place == cache.end()) {
        place = cache.insert(key, drawn(shadow, radius, ratio));
    }
    const double margin = reach(shadow);
    const double corner = (place->deviceIndependentSize().width() - 2) / 2;
    const QRectF target = rect.translated(0, shadow.offset).adjusted(-margin, -margin, margin, margin);
    // A small shape gives less room to the corners.
    const double x = std::min(corner, target.width() / 2);
    const double y = std::min(corner, target.height() / 2);
    const double side = 2 * corner + 2;
    const std::array<double, 4> fromX = {0, x, side - x, side};
    const std::array<double, 4> fromY = {0, y, side - y, side};
    const std::array<double, 4> toX = {target.left(), target.left() + x, target.right() - x, target.right()};
    const std::array<double, 4> toY = {target.top(), target.top() + y, target.bottom() - y, target.bottom()};
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            const QRectF part(QPointF(toX.at(column), toY.at(row)),
                              QPointF(toX.at(column + 1), toY.at(row + 1)));
            const QRectF source(QPointF(fromX.at(column), fromY.at(row)) * ratio,
                                QPointF(fromX.at(column + 1), fromY.at(row + 1)) * ratio);
            if (!part.isEmpty()) {
                painter.drawPixmap(part, *place, source);
            }
        }
    }
    if (shadow.edgeAlpha > 0 && !theme().dark) {
        QColor shade = theme().ink;
        shade.setAlphaF(static_cast<float>(shadow.edgeAlpha));
        painter.fillRect(rect.translated(0, 1).adjusted(-0.5, 0, 0.5, 0.5), shade);
    }
}

} // namespace tarnovel::app
