#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Button;
class ColorPicker;
class Segments;
class Swatches;

/// What lies behind the photo: a colour, a gradient, the photo blurred, or a picture.
class BackgroundSection : public Section {
    Q_OBJECT

public:
    explicit BackgroundSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    void addColors();
    void setColor(const QColor &color, bool dragging);
    /// The gradient's second colour is being chosen.
    bool second() const;

    Segments *m_kind;
    QWidget *m_colors;
    QWidget *m_palette;
    Segments *m_which;
    Swatches *m_photoColors;
    Swatches *m_papers;
    ColorPicker *m_picker;
    QWidget *m_blurHint;
    QWidget *m_picture;
    Button *m_choose;
    QWidget *m_filmHint;
};

} // namespace tarnovel::app
