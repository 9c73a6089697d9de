#pragma once

#include <QWidget>

#include "app/collage/PhotoItems.h"

class QHBoxLayout;

namespace tarnovel::app {

class Button;
class Label;
class ScrollArea;

/// The photos on offer, to be tapped in the order that they are to have.
class ChooserGrid : public PhotoItems {
    Q_OBJECT

public:
    explicit ChooserGrid(CollageStudio &studio);

    static constexpr int tile = 168;
    static constexpr int gap = 24;
    /// The left edge of the first column, and how many there are.
    void setColumns(int left, int columns);

    int count() const override { return static_cast<int>(studio().candidates().size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemChosen(int index) const override;

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    void layOut();

    int m_left = 0;
    int m_columns = 1;
};

/// The photos that have been tapped, in their nine places; a tap on one lets it go.
class ChooserTray : public PhotoItems {
    Q_OBJECT

public:
    explicit ChooserTray(CollageStudio &studio);

    int count() const override { return static_cast<int>(CollageEdits::mostPhotos); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemEnabled(int index) const override { return index < studio().total(); }
    bool itemChosen(int) const override { return false; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
};

/// "3 of 9"
QString pickedCount(const CollageStudio &studio);

/// The first half of a visit to the collage studio.
class CollageChooser : public QWidget {
    Q_OBJECT

public:
    explicit CollageChooser(CollageStudio &studio);

    static constexpr int trayHeight = 96;

Q_SIGNALS:
    void filesAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makeEmpty();
    QWidget *makeTray();
    void showState();

    CollageStudio &m_studio;
    QHBoxLayout *m_headerRow;
    QHBoxLayout *m_trayRow;
    ChooserGrid *m_grid;
    ScrollArea *m_scroll;
    QWidget *m_empty;
    Label *m_count;
    Button *m_files;
    Button *m_clear;
    Button *m_make;
};

} // namespace tarnovel::app
