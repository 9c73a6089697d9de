#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class ColorDots;
class Segments;
class Slider;
class Swatches;

/// The kind of frame, and the line around the photo.
class BorderSection : public Section {
    Q_OBJECT

public:
    explicit BorderSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    Segments *m_style;
    Slider *m_width;
    Swatches *m_photoColors;
    ColorDots *m_dots;
};

} // namespace tarnovel::app
