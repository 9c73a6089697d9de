#include "app/collage/BoardMarks.h"

#include <algorithm>

#include <QFontMetrics>
#include <QPainter>

#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"

namespace tarnovel::app::BoardMarks {

namespace {

constexpr QSizeF restingHandle(4, 32);
constexpr QSizeF largeHandle(8, 48);
constexpr QSizeF chipSize(72, 28);
constexpr int chipPadding = 14;
constexpr int chipGap = 8;
constexpr double lineWidth = 2;

} // namespace

QRectF handleRect(const CollageDivider &divider, QPointF origin, Grasp grasp)
{
    const bool upright = divider.axis == CollageAxis::Horizontal;
    const QPointF middle = upright ? QPointF(divider.position, divider.parent.center().y())
                                   : QPointF(divider.parent.center().x(), divider.position);
    const QSizeF along = grasp == Grasp::Rest ? restingHandle : largeHandle;
    const QSizeF size = upright ? along : along.transposed();
    return {origin + middle - QPointF(size.width() / 2, size.height() / 2), size};
}

void paintHandle(QPainter &painter, const CollageDivider &divider, QPointF origin, Grasp grasp)
{
    const QRectF handle = handleRect(divider, origin, grasp);
    const double radius = std::min(handle.width(), handle.height()) / 2;
    // White with a dark edge in both themes: it lies on photos, not on the interface.
    Paint::rounded(painter, handle.adjusted(-1, -0.5, 1, 1.5), radius + 1, QColor(0, 0, 0, 50));
    Paint::rounded(painter, handle, radius, Qt::white);
    if (grasp == Grasp::Held) {
        Paint::outline(painter, handle.adjusted(-1.5, -1.5, 1.5, 1.5), radius + 1.5, theme().accent, 2);
    } else {
        Paint::outline(painter, handle, radius, QColor(0, 0, 0, 40));
    }
}

void paintHeldLine(QPainter &painter, const CollageDivider &divider, QPointF origin)
{
    const QRectF parent = divider.parent.translated(origin);
    const double half = lineWidth / 2;
    painter.fillRect(
        divider.axis == CollageAxis::Horizontal
            ? QRectF(origin.x() + divider.position - half, parent.top(), lineWidth, parent.height())
            : QRectF(parent.left(), origin.y() + divider.position - half, parent.width(), lineWidth),
        theme().accent);
}

void paintChip(QPainter &painter, const QRectF &handle, const QString &text, bool snapped, const QRectF &room)
{
    painter.setFont(typeFont(Type::BodyStrong));
    const double width =
        std::max(chipSize.width(), QFontMetrics(painter.font()).horizontalAdvance(text) + 2.0 * chipPadding);
    QRectF chip(handle.center().x() - width / 2, handle.top() - chipGap - chipSize.height(), width,
                chipSize.height());
    chip.moveLeft(std::clamp(chip.left(), room.left(), std::max(room.right() - width, room.left())));
    chip.moveTop(std::max(chip.top(), room.top()));
    const Theme &look = theme();
    drawShadow(painter, chip, chip.height() / 2, Elevation::Popover);
    Paint::rounded(painter, chip, chip.height() / 2, snapped ? look.accent : look.toast);
    if (look.dark && !snapped) {
        Paint::outline(painter, chip, chip.height() / 2, look.hairline);
    }
    painter.setPen(snapped ? look.onAccent : look.onToast);
    painter.drawText(chip, Qt::AlignCenter, text);
}

void paintRing(QPainter &painter, const QRectF &cell, double radius, Ring ring)
{
    const Theme &look = theme();
    if (ring == Ring::Target) {
        QColor tint = look.accent;
        tint.setAlphaF(0.18F);
        Paint::rounded(painter, cell, radius, tint);
    }
    const double width = ring == Ring::Target ? 3 : 2;
    Paint::outline(painter, cell.adjusted(-width, -width, width, width), radius + width, look.accent, width);
    if (ring == Ring::Focused) {
        Paint::outline(painter, cell, radius, look.surface, 2);
        Paint::outline(painter, cell.adjusted(2, 2, -2, -2), std::max(radius - 2, 0.0), look.accent, 2);
    }
}

} // namespace tarnovel::app::BoardMarks
