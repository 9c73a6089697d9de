#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Button;
class LayerPlace;
class LayerShape;
class PictureWell;
class Switch;

/// The picture that stands for the photographer.
class LogoSection : public Section {
    Q_OBJECT

public:
    explicit LogoSection(const EditorContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    PictureWell *m_well;
    QWidget *m_empty;
    QWidget *m_change;
    Button *m_choose;
    Button *m_remove;
    QWidget *m_controls;
    Switch *m_visible;
    LayerShape *m_shape;
    LayerPlace *m_place;
};

} // namespace tarnovel::app
