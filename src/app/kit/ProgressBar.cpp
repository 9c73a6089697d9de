#include "app/kit/ProgressBar.h"

#include <QPainter>

#include "app/kit/Theme.h"

namespace tarnovel::app {

ProgressBar::ProgressBar(QWidget *parent) : QProgressBar(parent)
{
    setTextVisible(false);
    setFixedHeight(4);
}

void ProgressBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Paint::rounded(painter, rect(), 2, theme().surfaceMuted);
    const double share = maximum() > minimum() ? double(value() - minimum()) / (maximum() - minimum()) : 0;
    if (share > 0) {
        Paint::rounded(painter, QRectF(0, 0, std::max(width() * share, 4.0), height()), 2, theme().accent);
    }
}

} // namespace tarnovel::app
