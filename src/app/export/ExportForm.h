#pragma once

#include <functional>

#include <QWidget>

#include "app/kit/Phrase.h"
#include "export/ExportChoices.h"
#include "pipeline/ImagePipeline.h"

class QVBoxLayout;

namespace tarnovel::app {

class Label;
class NameField;
class Segments;
class SizeChoice;

/// What of the session is exported, how, and whereto.
class ExportForm : public QWidget {
    Q_OBJECT

public:
    ExportForm(const EditorModel &model, Preferences &preferences, ImagePipeline *pipeline = nullptr);

    const ExportChoices &choices() const { return m_choices; }
    /// Into the photo library, rather than a folder.
    bool toLibrary() const;
    void chooseFolder();
    /// As it is whenever the panel opens: into a folder, as the last time.
    void reset();
    /// Shows the session as it is now.
    void refresh();
    /// A run is under way: nothing can be chosen.
    void setBusy(bool busy);

Q_SIGNALS:
    /// The user has chosen something else.
    void changed();

private:
    void addRow(QVBoxLayout *column, Phrase title, QWidget *control, Label *note = nullptr) const;
    void connectControls();
    void connectName();
    void choose(const std::function<void(ExportChoices &)> &change);
    void showSizes();
    void showName();

    const EditorModel &m_model;
    Preferences &m_preferences;
    ExportChoices m_choices;
    bool m_busy = false;
    Segments *m_destination;
    Segments *m_which;
    SizeChoice *m_size;
    Segments *m_format;
    Segments *m_limit;
    Label *m_limitNote;
    NameField *m_name;
    ImagePipeline *m_pipeline;
    /// What the camera wrote about which file.
    QString m_capturedFile;
    CaptureMetadata m_captured;
};

} // namespace tarnovel::app
