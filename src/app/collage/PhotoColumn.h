#pragma once

#include <QWidget>

#include "app/collage/PhotoItems.h"

namespace tarnovel::app {

class Button;
class Label;

/// The photos beside the board, those of the collage first. A tap adds one or takes it away; dragged onto a
/// cell it takes that cell's place.
class ColumnPhotos : public PhotoItems {
    Q_OBJECT

public:
    explicit ColumnPhotos(CollageStudio &studio);

    int count() const override { return static_cast<int>(m_photos.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemEnabled(int) const override { return studio().editable(); }
    bool itemChosen(int index) const override { return studio().order(m_photos.at(index)) > 0; }

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    bool event(QEvent *event) override;

private:
    void learn();
    void take(int index);
    void startDrag(int index);

    QList<QUuid> m_photos;
    QPointF m_pressed;
    int m_grabbed = -1;
};

class PhotoColumn : public QWidget {
    Q_OBJECT

public:
    explicit PhotoColumn(CollageStudio &studio);

Q_SIGNALS:
    void filesAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showState();

    CollageStudio &m_studio;
    Label *m_count;
    Button *m_add;
};

} // namespace tarnovel::app
