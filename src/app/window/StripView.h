#pragma once

#include <optional>

#include <QBasicTimer>

#include "app/EditorContext.h"
#include "app/kit/ItemStrip.h"

namespace tarnovel::app {

/// The session's framed photos in a row that scrolls sideways.
class StripView : public ItemStrip {
    Q_OBJECT

public:
    StripView(const PhotosContext &context, EditorState &state);

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
    /// False when each photo is where it was.
    bool layOut();
    void paintAddTile(QPainter &painter, const QRect &tile, const State &state);

    PhotosContext m_context;
    EditorState &m_state;
    std::optional<QPointF> m_pressed;
    int m_offsetAtPress = 0;
    bool m_dragging = false;
    QBasicTimer m_spin;
    int m_angle = 0;
};

} // namespace tarnovel::app
