#pragma once

#include <map>
#include <optional>
#include <variant>

#include <QPixmap>
#include <QRegion>
#include <QVariantAnimation>

#include "app/EditorContext.h"
#include "app/collage/BoardMarks.h"
#include "app/kit/ItemView.h"
#include "collage/CollageGestures.h"

class QNativeGestureEvent;
class QPinchGesture;

namespace tarnovel::app {

/// How a photo of the studio is dragged from one place of the screen to another: its id as text.
inline constexpr const char *collagePhotoMime = "application/x-tarnovel-collage-photo";

/// The collage being arranged: dividers and photos are dragged here, photos zoomed, swapped and replaced. Its
/// items are the cells in their order, then the dividers; the Tab key goes through all of them.
class CollageBoard : public ItemView {
    Q_OBJECT

public:
    CollageBoard(EditorState &state, CollageStudio &studio);

    CollageGestures &gestures() { return m_gestures; }
    /// The collage's place, in the widget's coordinates.
    QRectF boardRect() const;
    /// A cell has been lifted to be swapped.
    bool lifting() const { return held<Lift>(); }

    int count() const override;
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemChosen(int index) const override;
    int itemAt(QPoint position) const override;

    /// Room between the collage and the edges of its stage.
    static constexpr int margin = 48;

Q_SIGNALS:
    /// Another photo of the disk for this cell.
    void replaceAsked(int slot);

protected:
    void paintEvent(QPaintEvent *event) override;
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool event(QEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    // What the hand does, one thing at a time.
    struct Idle {};
    /// Drags a divider; CollageGestures knows which.
    struct DividerDrag {};
    /// Holds a cell by the pressed button, and pans its photo once it has moved.
    struct CellPress {
        int slot = 0;
        QPointF at;
        bool moved = false;
    };
    /// Carries a cell on its way to another.
    struct Lift {
        int slot = 0;
        QPixmap picture;
        QPointF grip;
        QPointF at;
    };
    /// Two fingers on a cell, or beside all.
    struct Pinch {
        QPointF centre;
        std::optional<int> slot;
    };
    template<typename Doing>
    Doing *held()
    {
        return std::get_if<Doing>(&m_hand);
    }
    template<typename Doing>
    const Doing *held() const
    {
        return std::get_if<Doing>(&m_hand);
    }
    /// Ends what the hand does; a cell in it goes back.
    void letGo();

    /// Where the photos were before the layout changed.
    struct Relayout {
        QSizeF size;
        std::map<QUuid, QRectF> cells;
    };

    int cells() const { return static_cast<int>(m_studio.design().cells.size()); }
    std::optional<int> slotAt(QPointF position) const;
    CollageDivider dividerOf(int index) const { return m_studio.layout().dividers.at(index - cells()); }
    void studioChanged(CollageStudio::Changes changes);
    void noteLayout();
    void blend(CollagePlan &plan, const CollageDesign &design) const;
    void paintCollage(QPainter &painter, const CollageView &view, const QRectF &frame) const;
    void paintAround(QPainter &painter, const QRectF &frame) const;
    void paintMissing(QPainter &painter, const CollageView &view) const;
    void paintRing(QPainter &painter, int slot, BoardMarks::Ring ring) const;
    void paintLifted(QPainter &painter, const Lift &lift) const;
    void paintReadout(QPainter &painter) const;
    void repaintBoard();
    void lift(const CellPress &press);
    void drop(int slot, QPointF position);
    void showCursor(QPointF position);
    void moveTo(int index);
    bool cellKey(QKeyEvent *event, int slot);
    bool dividerKey(QKeyEvent *event, int index);
    void swapTowards(int slot, int key);
    void openMenu(int slot);
    void setTarget(std::optional<int> slot);
    std::optional<int> dropSlot(const QDropEvent *event) const;
    void takeColor(QPointF position);
    void pinch(const QPinchGesture &fingers);
    bool nativeGesture(QNativeGestureEvent *event);

    EditorState &m_state;
    CollageStudio &m_studio;
    CollageGestures m_gestures;
    std::variant<Idle, DividerDrag, CellPress, Lift, Pinch> m_hand;
    /// The cell that a lifted one, or a drop, would go to.
    std::optional<int> m_target;
    QBasicTimer m_longPress;
    /// The read-out of a divider that the keyboard moved.
    QString m_nudged;
    QBasicTimer m_nudgeEnd;
    /// What the paint event under way is about.
    QRegion m_dirty;
    QString m_signature;
    Relayout m_shown;
    Relayout m_before;
    QVariantAnimation m_relayout;
};

} // namespace tarnovel::app
