#pragma once

#include <QColor>
#include <QWidget>

#include "app/EditorContext.h"
#include "app/kit/Phrase.h"

class QVBoxLayout;

namespace tarnovel::app {

/// One tool of the inspector: it shows the selected photo's values and says what the user did. It follows the
/// model while it can be seen.
class Section : public QWidget {
    Q_OBJECT

public:
    explicit Section(const EditingContext &context, QWidget *parent = nullptr);

    virtual bool canReset() const { return true; }
    /// Puts the section's values back to what a new style has, as one step.
    virtual void reset() {}

protected:
    /// Shows the values of the selected photo.
    virtual void display(const PhotoItem &photo) = 0;
    void refresh();
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

    QVBoxLayout *column() const { return m_column; }
    /// A hairline with its room.
    void addRule();
    void addHeading(Phrase phrase);
    /// A line with an icon that explains.
    void addHint(const char *icon, Phrase phrase);
    EditorModel &model() const { return m_context.model; }
    SettingsEdits &edits() const { return m_context.edits; }
    EditorState &state() const { return m_context.state; }

private:
    EditingContext m_context;
    QVBoxLayout *m_column;
    QUuid m_photo;
};

/// A hairline of its own, with room above and below.
QWidget *makeRule();
/// A row of an icon and a wrapping text.
QWidget *makeHint(const char *icon, Phrase phrase);

Ink inkOf(const QColor &color);

/// What typing into a text's field does: whoever types into a hidden text wants to see it.
std::function<void(TextLayer &)> typed(const QString &text);

} // namespace tarnovel::app
