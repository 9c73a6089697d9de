#pragma once

#include <QWidget>

#include "app/EditorContext.h"
#include "handwriting/HandwritingController.h"

class QHBoxLayout;

namespace tarnovel::app {

class InkColors;
class Label;
class Slider;
class ToolTiles;
class WidthSample;

/// The bar under the page: pens, colour, width and effect.
class HandwritingTools : public QWidget {
    Q_OBJECT

public:
    explicit HandwritingTools(EditorState &state, QWidget *parent = nullptr);

    /// Shows what the studio has; nobody is told.
    void display(const HandwritingController &studio);

Q_SIGNALS:
    void toolChosen(tarnovel::HandwritingTool tool);
    void colorChosen(const tarnovel::Ink &color);
    /// In reference units.
    void widthChosen(double width);
    void finishChosen(tarnovel::HandwritingFinish finish);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *makePens();
    QWidget *makeColors(EditorState &state);
    QWidget *makeWidth();
    QWidget *makeEffects();
    void name();

    QHBoxLayout *m_row;
    ToolTiles *m_pens = nullptr;
    Label *m_colorTitle = nullptr;
    InkColors *m_colors = nullptr;
    Label *m_eraserHint = nullptr;
    Slider *m_width = nullptr;
    WidthSample *m_sample = nullptr;
    ToolTiles *m_effects = nullptr;
};

} // namespace tarnovel::app
