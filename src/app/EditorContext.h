#pragma once

#include <functional>
#include <optional>

#include <QColor>
#include <QObject>

#include "app/Tools.h"
#include "app/kit/Toast.h"
#include "editor/CanvasGestures.h"
#include "editor/EditorModel.h"
#include "editor/ImportFlow.h"
#include "editor/SettingsEdits.h"
#include "editor/Thumbnails.h"

namespace tarnovel::app {

/// What the editor's screens share beyond the model: which tool and layer are at hand, and what one screen
/// asks of another.
class EditorState : public QObject {
    Q_OBJECT

public:
    Tool tool() const { return m_tool; }
    void setTool(Tool tool);
    const std::optional<QString> &selectedLayer() const { return m_layer; }
    void selectLayer(const std::optional<QString> &id);
    void say(const QString &text, Toast::Kind kind) { Q_EMIT saying(text, kind); }
    /// The next click on the picture gives a colour.
    void pickColor(std::function<void(const QColor &)> taken);
    /// A second tap on the same tool, or a photo, ends the picking.
    const std::function<void(const QColor &)> &colorTaker() const { return m_taker; }
    void endPicking();

Q_SIGNALS:
    void toolChanged();
    void layerChanged();
    void pickingChanged();
    void saying(const QString &text, tarnovel::app::Toast::Kind kind);
    void addPhotosAsked();
    void backgroundAsked();
    void logoAsked();
    void signatureAsked();
    void saveStyleAsked();
    void applyToAllAsked();
    void removeAsked();

private:
    Tool m_tool = Tool::Templates;
    std::optional<QString> m_layer;
    std::function<void(const QColor &)> m_taker;
};

/// What shows the session's photos, and nothing else of the editor, works with.
struct PhotosContext {
    EditorModel &model;
    Thumbnails &thumbnails;
};

/// What shows and changes the selected photo's frame works with.
struct EditingContext {
    EditorModel &model;
    SettingsEdits &edits;
    EditorState &state;
};

/// Everything the editor's own screens work with; all of it outlives them. A widget that needs less takes
/// less.
struct EditorContext {
    EditorModel &model;
    SettingsEdits &edits;
    ImportFlow &imports;
    Thumbnails &thumbnails;
    ImagePipeline &pipeline;
    Preferences &preferences;
    Clock &clock;
    EditorState &state;

    PhotosContext photos() const { return {model, thumbnails}; }
    EditingContext editing() const { return {model, edits, state}; }
};

} // namespace tarnovel::app
