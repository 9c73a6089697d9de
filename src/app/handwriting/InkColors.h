#pragma once

#include "app/inspector/ColorDots.h"

namespace tarnovel::app {

/// The colours of ink in two rows, with the wheel for any other at the end.
class InkColors : public ColorDots {
    Q_OBJECT

public:
    explicit InkColors(EditorState &state);

    /// Where there is little room, only the colours that one signs with.
    void setFew(bool few);
    /// Asks for the names again.
    void refresh();

    QRect itemRect(int index) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void changeEvent(QEvent *event) override;

private:
    int columns() const;

    bool m_few = false;
};

} // namespace tarnovel::app
