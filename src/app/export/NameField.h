#pragma once

#include <QWidget>

#include "app/kit/Phrase.h"
#include "language/FieldPattern.h"

namespace tarnovel::app {

class Field;
class Label;

/// Where the user says how exported files are called: a pattern to type in, buttons that put a field where
/// the cursor stands, and what the photo at hand would be called.
class NameField : public QWidget {
    Q_OBJECT

public:
    NameField();

    /// Shows a pattern unless the user is typing one; an empty one is the default. Nobody is told.
    void display(const QString &pattern);
    /// The photo that the example is about.
    void setExample(const FieldValues &values, const QString &extension);

Q_SIGNALS:
    /// A pattern that can be used, or nothing for the default.
    void typed(const QString &pattern);

private:
    void insert(const QString &field);
    void take();
    QString exampleText() const;

    Field *m_field;
    Label *m_example;
    FieldValues m_values;
    QString m_extension;
};

} // namespace tarnovel::app
