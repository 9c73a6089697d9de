#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace tarnovel::app {

/// A message that comes and goes over the picture. A new one takes the place of the old; the pointer over it
/// holds it. Screen readers hear it.
class Toast : public QWidget {
    Q_OBJECT

public:
    enum class Kind { Done, Error, Busy, Plain };

    explicit Toast(QWidget *parent);

    void say(const QString &text, Kind kind);
    /// Takes away a message of work under way.
    void endBusy();
    /// Its bottom centre, in the parent's coordinates.
    void setAnchor(QPoint bottomCentre, int mostWidth);
    const QString &text() const { return m_text; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    void place();

    QString m_text;
    Kind m_kind = Kind::Plain;
    QPoint m_anchor;
    int m_mostWidth = 600;
    QBasicTimer m_end;
    QBasicTimer m_spin;
    int m_angle = 0;
};

} // namespace tarnovel::app
