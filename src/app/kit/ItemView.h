#pragma once

#include <optional>

#include <QBasicTimer>
#include <QWidget>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A group of things to choose from that is one stop of the Tab key: arrows move inside. Screen readers see
/// each item by its name.
class ItemView : public QWidget {
    Q_OBJECT

public:
    /// What an arrow key does.
    enum class Arrows {
        /// Chooses the next item at once.
        Choose,
        /// Only moves; Space and Enter choose.
        Move,
    };

    explicit ItemView(Arrows arrows, QWidget *parent = nullptr);

    /// What a screen reader calls the group.
    void setName(Phrase name);

    virtual int count() const = 0;
    /// In the widget's coordinates.
    virtual QRect itemRect(int index) const = 0;
    virtual QString itemName(int index) const = 0;
    virtual bool itemEnabled(int) const { return isEnabled(); }
    virtual bool itemChosen(int index) const { return index == m_current; }

    /// The chosen item, or -1. Setting it tells nobody.
    int current() const { return m_current; }
    void setCurrent(int index);
    /// The item that the keyboard is on, or -1.
    int cursor() const { return m_cursor; }
    void setCursorItem(int index);
    virtual int itemAt(QPoint position) const;
    /// What a click on the item does.
    void choose(int index);

Q_SIGNALS:
    void chosen(int index);
    void activated(int index);
    /// The user asks what else can be done with the item: menu key, right click, Delete, or a long press.
    void menuRequested(int index);
    void cursorMoved(int index);

protected:
    struct State {
        bool hovered = false;
        bool pressed = false;
        bool chosen = false;
        bool enabled = true;
        /// Has the keyboard, and rings show.
        bool focused = false;
    };
    virtual void paintItem(QPainter &painter, int index, const State &state) = 0;
    virtual void paintGround(QPainter &) {}

    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool event(QEvent *event) override;

    int hovered() const { return m_hovered; }
    int pressedItem() const { return m_pressed; }
    /// The press that is under way will neither choose nor ask: it has become a drag.
    void cancelPress();
    /// Where the End key goes.
    virtual int lastItem() const { return count() - 1; }
    /// Whether an arrow key that comes to the item chooses it.
    virtual bool arrowsChoose(int) const { return m_arrows == Arrows::Choose; }

private:
    void moveCursor(int key);
    int nextInDirection(int key) const;

    Arrows m_arrows;
    Phrase m_name;
    int m_current = -1;
    int m_cursor = -1;
    int m_hovered = -1;
    int m_pressed = -1;
    QBasicTimer m_longPress;
};

} // namespace tarnovel::app
