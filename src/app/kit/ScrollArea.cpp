#include "app/kit/ScrollArea.h"

#include <QPainter>

#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int barWidth = 8;
constexpr int thumbWidth = 4;

} // namespace

ThinScrollBar::ThinScrollBar(Qt::Orientation orientation, QWidget *parent) : QScrollBar(orientation, parent)
{
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::NoFocus);
}

QSize ThinScrollBar::sizeHint() const
{
    return orientation() == Qt::Vertical ? QSize(barWidth, 40) : QSize(40, barWidth);
}

void ThinScrollBar::paintEvent(QPaintEvent *)
{
    if (maximum() <= minimum()) {
        return;
    }
    QPainter painter(this);
    const bool vertical = orientation() == Qt::Vertical;
    const double length = vertical ? height() : width();
    const double all = maximum() - minimum() + pageStep();
    const double thumb = std::max(length * pageStep() / all, 24.0);
    const double at = (length - thumb) * (value() - minimum()) / std::max(maximum() - minimum(), 1);
    QColor color = theme().controlLine;
    color.setAlphaF(underMouse() || isSliderDown() ? 0.9F : 0.5F);
    const double aside = (barWidth - thumbWidth) / 2.0;
    const QRectF box = vertical ? QRectF(aside, at, thumbWidth, thumb) : QRectF(at, aside, thumb, thumbWidth);
    Paint::rounded(painter, box, thumbWidth / 2.0, color);
}

ScrollArea::ScrollArea(QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new ThinScrollBar(Qt::Vertical));
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
}

void ScrollArea::hold(QWidget *column)
{
    setWidget(column);
    column->setAutoFillBackground(false);
}

} // namespace tarnovel::app
