#pragma once

#include <QWidget>

namespace tarnovel::app {

class Button;

/// How one writes and moves about, for the empty page.
class WritingGuide : public QWidget {
    Q_OBJECT

public:
    static constexpr int leastWidth = 200;
    static constexpr int mostWidth = 288;

    explicit WritingGuide(QWidget *parent = nullptr);
};

/// Smaller, the zoom as it is, larger. A click on the number shows the whole page.
class ZoomControl : public QWidget {
    Q_OBJECT

public:
    explicit ZoomControl(QWidget *parent = nullptr);

    /// 1 when the whole page shows, which is as small as it goes.
    void setZoom(double zoom, double most);

Q_SIGNALS:
    void largerAsked();
    void smallerAsked();
    void fitAsked();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Button *m_smaller;
    Button *m_zoom;
    Button *m_larger;
};

} // namespace tarnovel::app
