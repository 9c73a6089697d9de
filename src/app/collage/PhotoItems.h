#pragma once

#include <QBasicTimer>
#include <QHash>
#include <QPixmap>

#include "app/kit/ItemView.h"
#include "collage/CollageStudio.h"

namespace tarnovel::app {

/// Photos that a collage can be made of, as square tiles of one size.
class PhotoItems : public ItemView {
    Q_OBJECT

protected:
    PhotoItems(CollageStudio &studio, int side, QWidget *parent = nullptr);

    CollageStudio &studio() const { return m_studio; }
    int side() const { return m_side; }
    /// The photo's name, or nothing for an unknown photo.
    QString nameOf(const QUuid &photo) const;
    /// The middle of the photo; a muted tile until it has arrived, with a sign if it cannot be read.
    void paintPhoto(QPainter &painter, const QRect &tile, const QUuid &photo, double radius);
    /// The tile's picture in device pixels; null until it has arrived.
    QPixmap pixmap(const QUuid &photo);
    /// The photo's place in the collage, from 1 on, in a filled circle.
    static void paintNumber(QPainter &painter, const QRectF &circle, qsizetype number);

    void timerEvent(QTimerEvent *event) override;

private:
    CollageStudio &m_studio;
    int m_side;
    double m_ratio = 0;
    QHash<QUuid, QPixmap> m_pixmaps;
    QBasicTimer m_spin;
    bool m_ring = false;
    bool m_waiting = false;
    int m_angle = 0;
};

} // namespace tarnovel::app
