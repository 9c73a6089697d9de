#pragma once

#include <optional>

#include "app/EditorContext.h"

namespace tarnovel::app {

class Label;
class NumberField;
class PositionPad;
class Slider;

/// Size and rotation of one layer.
class LayerShape : public QWidget {
    Q_OBJECT

public:
    explicit LayerShape(SettingsEdits &edits);
    void display(const TextLayer &layer);

private:
    SettingsEdits &m_edits;
    QString m_id;
    Slider *m_size;
    Slider *m_rotation;
};

/// The place of one layer: nine quick ones, or its coordinates.
class LayerPlace : public QWidget {
    Q_OBJECT

public:
    explicit LayerPlace(EditorModel &model, SettingsEdits &edits);
    void display(const PhotoItem &photo, const TextLayer &layer);

private:
    EditorModel &m_model;
    SettingsEdits &m_edits;
    QString m_id;
    PositionPad *m_pad;
    Label *m_name;
    NumberField *m_x;
    NumberField *m_y;
};

/// The canvas that positions are worked out on; any size of its ratio would do.
QSizeF referenceCanvas(const PhotoItem &photo);

} // namespace tarnovel::app
