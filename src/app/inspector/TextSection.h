#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Button;
class ColorDots;
class Field;
class LayerList;
class LayerPlace;
class LayerShape;
class Segments;

/// The texts over the frame.
class TextSection : public Section {
    Q_OBJECT

public:
    explicit TextSection(const EditingContext &context);
    void reset() override;
    /// Puts the cursor into the text's field.
    void editText();

protected:
    void display(const PhotoItem &photo) override;

private:
    void addEditor();
    void addLayer();
    void removeLayer();
    QString shownLayer(const PhotoItem &photo) const;

    LayerList *m_list;
    Button *m_camera;
    QWidget *m_editor;
    Field *m_text;
    Segments *m_font;
    LayerShape *m_shape;
    ColorDots *m_ink;
    LayerPlace *m_place;
    Button *m_remove;
    QString m_id;
};

/// The five faces in the order of the choice, as they are stored; the first is the system face.
int fontIndex(const TextLayer &layer);
std::optional<QString> fontAt(int index);
Segments *makeFontSegments();

} // namespace tarnovel::app
