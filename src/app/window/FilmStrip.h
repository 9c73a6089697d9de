#pragma once

#include <optional>

#include <QBasicTimer>

#include "app/EditorContext.h"
#include "app/kit/ItemView.h"

namespace tarnovel::app {

class Button;
class Label;

/// The session's framed photos in a row that scrolls sideways.
class StripView : public ItemView {
    Q_OBJECT

public:
    explicit StripView(const EditorContext &context);

    int count() const override;
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemEnabled(int index) const override;
    bool itemChosen(int index) const override;
    bool isAddTile(int index) const;
    /// Where the item's picture is drawn, in its own ratio, within its place.
    QRect pictureRect(int index) const;
    int lastItem() const override { return count() - 2; }
    bool arrowsChoose(int index) const override { return !isAddTile(index); }

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool event(QEvent *event) override;

private:
    QImage thumbnail(int index) const;
    QRect pictureRect(int index, const QImage &image) const;
    /// Asks for the visible pictures whose photos have changed.
    void requestChanged();
    int widthOf(const PhotoItem &photo) const;
    void layOut();
    void scrollTo(int offset);
    void reveal(int index);
    void paintAddTile(QPainter &painter, const QRect &tile, const State &state);

    EditorContext m_context;
    /// Left edges before scrolling; one more than there are items.
    QList<int> m_edges;
    int m_offset = 0;
    std::optional<QPointF> m_pressed;
    int m_offsetAtPress = 0;
    bool m_dragging = false;
    QBasicTimer m_spin;
    int m_angle = 0;
};

/// The strip with its header.
class FilmStrip : public QWidget {
    Q_OBJECT

public:
    explicit FilmStrip(const EditorContext &context);

    StripView *view() const { return m_view; }
    QWidget *removeButton() const;

Q_SIGNALS:
    void previewSetAsked();
    void manageAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showPhoto();

    EditorContext m_context;
    Label *m_name;
    Label *m_place;
    StripView *m_view;
    Button *m_remove;
};

} // namespace tarnovel::app
