#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Slider;
class Switch;

/// Where the photo lies on the canvas, and how large.
class PlacementSection : public Section {
    Q_OBJECT

public:
    explicit PlacementSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    Slider *m_size;
    Slider *m_x;
    Slider *m_y;
    Switch *m_lockX;
    Switch *m_lockY;
};

} // namespace tarnovel::app
