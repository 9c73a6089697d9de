#pragma once

#include <optional>

#include "app/EditorContext.h"
#include "app/kit/ItemView.h"

namespace tarnovel::app {

class Label;
class ScrollArea;

/// The set's pictures as a post shows them, in three columns; dragged tiles move.
class PostGrid : public ItemView {
    Q_OBJECT

public:
    explicit PostGrid(const PhotosContext &context);

    void reload();
    /// How wide one of the three columns is.
    void setColumn(int width);
    int count() const override { return static_cast<int>(m_context.model.photos().size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    QSize sizeHint() const override;
    /// Moves a photo to another place, as a drag does.
    void movePhoto(int from, int to);

Q_SIGNALS:
    /// A drag near an edge asks for what lies beyond it.
    void scrollAsked(int y);

protected:
    void paintEvent(QPaintEvent *event) override;
    void paintItem(QPainter &painter, int index, const State &state) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QSize tile() const;
    QImage picture(int index) const;
    /// The photo that stands at a place while one is lifted.
    int photoAt(int place) const;

    PhotosContext m_context;
    std::optional<QPoint> m_press;
    int m_column = 0;
    int m_lifted = -1;
    int m_target = -1;
    QPoint m_hand;
};

/// The first photo large, and how many follow it.
class CoverView : public QWidget {
    Q_OBJECT

public:
    explicit CoverView(const PhotosContext &context);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    PhotosContext m_context;
};

/// The page that shows the set like a post, where it is put in order.
class SetPreview : public QWidget {
    Q_OBJECT

public:
    explicit SetPreview(const PhotosContext &context);

    void open();
    PostGrid *grid() const { return m_grid; }

Q_SIGNALS:
    void closeAsked();
    void exportAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void place();

    PhotosContext m_context;
    QWidget *m_bar;
    Label *m_title;
    Label *m_hint;
    CoverView *m_cover;
    QWidget *m_card;
    Label *m_count;
    PostGrid *m_grid;
    ScrollArea *m_area;
};

} // namespace tarnovel::app
