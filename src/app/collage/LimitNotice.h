#pragma once

#include <QBasicTimer>
#include <QVariantAnimation>
#include <QWidget>

namespace tarnovel::app {

/// What springs up when a tenth photo is tapped.
class LimitNotice : public QWidget {
    Q_OBJECT

public:
    explicit LimitNotice(QWidget *parent);

    void present();
    /// Its bottom centre, in the parent's coordinates.
    void setAnchor(QPoint bottomCentre);

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QPoint m_anchor;
    QVariantAnimation m_motion;
    double m_shown = 1;
    QBasicTimer m_end;
};

} // namespace tarnovel::app
