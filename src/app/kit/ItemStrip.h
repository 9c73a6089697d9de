#pragma once

#include "app/kit/ItemView.h"

namespace tarnovel::app {

/// Items of their own widths in one row, which scrolls sideways: by the wheel, and to whichever item the
/// keyboard is at.
class ItemStrip : public ItemView {
    Q_OBJECT

public:
    explicit ItemStrip(Arrows arrows);

protected:
    /// Left and right of the row.
    static constexpr int sideInset = 24;

    /// Lays the items out anew, the first one at `left`. False when each is where it was.
    bool setWidths(const QList<int> &widths, int gap, int left = sideInset);
    /// The item's place in the row as it is scrolled; nothing for one that has none yet.
    QRect placeOf(int index, int top, int height) const;
    int offset() const { return m_offset; }
    /// Held to the row's ends.
    void scrollTo(int offset);
    void reveal(int index);
    void wheelEvent(QWheelEvent *event) override;

private:
    /// Left edges before scrolling; one more than there are items.
    QList<int> m_edges;
    int m_gap = 0;
    int m_offset = 0;
};

} // namespace tarnovel::app
