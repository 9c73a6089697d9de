#pragma once

#include "app/EditorContext.h"
#include "app/kit/ItemView.h"

namespace tarnovel::app {

/// The column of tools at the window's edge.
class ToolRail : public ItemView {
    Q_OBJECT

public:
    explicit ToolRail(EditorState &state);

    int count() const override { return static_cast<int>(toolRows.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    QSize sizeHint() const override { return {80, 600}; }

protected:
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    EditorState &m_state;
};

} // namespace tarnovel::app
