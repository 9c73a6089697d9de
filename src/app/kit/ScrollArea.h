#pragma once

#include <QScrollArea>
#include <QScrollBar>

namespace tarnovel::app {

/// A bar of four pixels that shows where one is.
class ThinScrollBar : public QScrollBar {
    Q_OBJECT

public:
    explicit ThinScrollBar(Qt::Orientation orientation, QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// A column that scrolls up and down, as wide as it is given.
class ScrollArea : public QScrollArea {
    Q_OBJECT

public:
    explicit ScrollArea(QWidget *parent = nullptr);
    /// Takes the column that scrolls. What lies behind shows through.
    void hold(QWidget *column);
};

} // namespace tarnovel::app
