#include "app/inspector/PictureWell.h"

#include <QPainter>

#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int wellHeight = 120;
constexpr int padding = 20;

} // namespace

PictureWell::PictureWell(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(wellHeight);
}

void PictureWell::setPicture(const QImage &picture)
{
    m_picture = picture;
    update();
}

void PictureWell::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    // Signatures and most logos are dark: the well stays light in both themes.
    Paint::rounded(painter, rect(), 8, Theme::light().surfaceMuted);
    if (m_picture.isNull()) {
        return;
    }
    const QSizeF room = QSizeF(size()) - QSizeF(2 * padding, 2 * padding);
    QSizeF shown = QSizeF(m_picture.size()) / devicePixelRatioF();
    if (shown.width() > room.width() || shown.height() > room.height()) {
        shown.scale(room, Qt::KeepAspectRatio);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize pixels = (shown * devicePixelRatioF()).toSize();
    painter.drawImage(QRectF(QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown),
                      m_picture.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

} // namespace tarnovel::app
