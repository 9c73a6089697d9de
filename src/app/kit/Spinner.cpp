#include "app/kit/Spinner.h"

#include <QPainter>

namespace tarnovel::app::Spinner {

void paint(QPainter &painter, const QRectF &box, int angle, const QColor &color)
{
    const QRectF ring = box.adjusted(3, 3, -3, -3);
    QColor faint = color;
    faint.setAlphaF(0.25F);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(faint, 1.5));
    painter.drawEllipse(ring);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -angle * 16, 90 * 16);
}

} // namespace tarnovel::app::Spinner
