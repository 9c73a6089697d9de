#pragma once

#include <array>

#include "app/EditorContext.h"

class QStackedWidget;

namespace tarnovel::app {

class Button;
class Label;
class Section;
class ScrollArea;

/// The inspector: the section of the chosen tool between its title and what concerns every tool.
class ToolPanel : public QWidget {
    Q_OBJECT

public:
    explicit ToolPanel(const EditorContext &context);

    /// The section of the chosen tool; sections are made when first shown.
    Section *section();
    /// Where the question for a style's name hangs.
    QWidget *saveStyleButton() const;
    QSize sizeHint() const override { return {304, 600}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showTool();
    Section *make(Tool tool) const;

    EditorContext m_context;
    Label *m_title;
    Button *m_reset;
    QStackedWidget *m_pages;
    Button *m_applyToAll;
    Button *m_saveStyle;
    std::array<Section *, toolRows.size()> m_sections = {};
    std::array<ScrollArea *, toolRows.size()> m_areas = {};
};

} // namespace tarnovel::app
