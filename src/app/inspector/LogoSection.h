#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class LayerPlace;
class LayerShape;
class PictureHolder;
class Switch;

/// The picture that stands for the photographer.
class LogoSection : public Section {
    Q_OBJECT

public:
    explicit LogoSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    PictureHolder *m_holder;
    Switch *m_visible;
    LayerShape *m_shape;
    LayerPlace *m_place;
};

} // namespace tarnovel::app
