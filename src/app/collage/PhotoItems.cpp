#include "app/collage/PhotoItems.h"

#include <utility>

#include <QPainter>
#include <QPainterPath>
#include <QTimerEvent>

#include "app/kit/Icons.h"
#include "app/kit/Spinner.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

/// A picture that comes at once needs no ring.
constexpr int ringDelayMs = 150;

} // namespace

PhotoItems::PhotoItems(CollageStudio &studio, int side, QWidget *parent)
    : ItemView(Arrows::Move, parent), m_studio(studio), m_side(side)
{
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & (CollageStudio::PhotosChanged | CollageStudio::ImagesChanged)) {
            update();
        }
    });
}

QString PhotoItems::nameOf(const QUuid &photo) const
{
    const PhotoItem *item = m_studio.photo(photo);
    return item ? item->name : QString();
}

QPixmap PhotoItems::pixmap(const QUuid &photo)
{
    if (std::exchange(m_ratio, devicePixelRatioF()) != devicePixelRatioF()) {
        m_pixmaps.clear();
    }
    const auto known = m_pixmaps.constFind(photo);
    if (known != m_pixmaps.constEnd()) {
        return *known;
    }
    const QImage image = m_studio.tile(photo);
    if (image.isNull()) {
        return {};
    }
    const int square = std::min(image.width(), image.height());
    const QImage middle =
        image.copy((image.width() - square) / 2, (image.height() - square) / 2, square, square);
    const int pixels = qRound(m_side * m_ratio);
    QPixmap made =
        QPixmap::fromImage(middle.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    made.setDevicePixelRatio(m_ratio);
    m_pixmaps.insert(photo, made);
    return made;
}

void PhotoItems::paintPhoto(QPainter &painter, const QRect &tile, const QUuid &photo, double radius)
{
    const Theme &look = theme();
    const QPixmap picture = pixmap(photo);
    if (picture.isNull()) {
        Paint::rounded(painter, tile, radius, look.surfaceMuted);
        const QPointF middle = QRectF(tile).center();
        if (m_studio.tileFailed(photo)) {
            Icons::draw(painter, "warn", middle - QPointF(8, 8), 16, look.danger);
            return;
        }
        m_waiting = true;
        if (!m_spin.isActive()) {
            m_ring = false;
            m_spin.start(ringDelayMs, this);
        }
        if (m_ring) {
            Spinner::paint(painter, QRectF(middle - QPointF(10, 10), QSizeF(20, 20)), m_angle,
                           look.inkSecondary);
        }
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QPainterPath corners;
    corners.addRoundedRect(tile, radius, radius);
    painter.setClipPath(corners);
    painter.drawPixmap(QRectF(tile), picture, QRectF(picture.rect()));
    painter.restore();
    Paint::outline(painter, tile, radius, look.rim);
}

void PhotoItems::paintNumber(QPainter &painter, const QRectF &circle, qsizetype number)
{
    Paint::rounded(painter, circle, circle.width() / 2, theme().accent);
    painter.setFont(typeFont(Type::BodyStrong));
    painter.setPen(theme().onAccent);
    painter.drawText(circle, Qt::AlignCenter, QString::number(number));
}

void PhotoItems::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_spin.timerId()) {
        ItemView::timerEvent(event);
        return;
    }
    if (!std::exchange(m_waiting, false)) {
        m_spin.stop();
        return;
    }
    if (!std::exchange(m_ring, true)) {
        m_spin.start(Spinner::tickMs, this);
    }
    m_angle = (m_angle + Spinner::degreesPerTick) % 360;
    update();
}

} // namespace tarnovel::app
