#pragma once

#include <QImage>
#include <QWidget>

#include "handwriting/HandwritingController.h"

namespace tarnovel::app {

/// A stroke with its finish on a small transparent image of `size` logical pixels, drawn by the page's own
/// renderer; one reference unit is one logical pixel.
QImage strokeImage(const InkStroke &stroke, const FinishStyle &style, QSize size, double devicePixelRatio);

/// A wave across a box of this size, for pictures of pens and finishes.
InkStroke waveStroke(InkPen pen, const Ink &color, double width, QSizeF box);

/// What the chosen pen leaves at the chosen width; for the eraser, its size.
class WidthSample : public QWidget {
    Q_OBJECT

public:
    explicit WidthSample(QWidget *parent = nullptr);

    void display(HandwritingTool tool, const FinishStyle &style, double width);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    HandwritingTool m_tool = HandwritingTool::Signature;
    FinishStyle m_style;
    double m_width = 0;
};

} // namespace tarnovel::app
