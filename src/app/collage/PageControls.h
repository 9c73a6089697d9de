#pragma once

#include <QWidget>

#include "app/EditorContext.h"
#include "collage/CollagePage.h"

namespace tarnovel::app {

class ColorDots;
class Segments;
class Slider;

/// Spacing, shape and paper of the whole collage.
class PageControls : public QWidget {
    Q_OBJECT

public:
    PageControls(EditorState &state, CollageStudio &studio);

private:
    Slider *addLength(const Phrase &name, double largest, double usual, void (CollagePage::*set)(double));
    void showState();

    CollageStudio &m_studio;
    Slider *m_gap;
    Slider *m_margin;
    Slider *m_radius;
    Segments *m_aspect;
    ColorDots *m_background;
    QWidget *m_paper;
    QWidget *m_filmHint;
};

} // namespace tarnovel::app
