#pragma once

#include <QAccessible>
#include <QString>

class QWidget;

namespace tarnovel::app {

/// A value as it is told to people, in the units that the control shows.
struct SpokenValue {
    double value = 0;
    double low = 0;
    double high = 0;
    double step = 0;
    QString text;
};

/// A control with a value that a screen reader reads and sets. The widget inherits it.
class Speaking {
public:
    virtual SpokenValue spoken() const = 0;
    virtual void takeSpoken(double value) = 0;

protected:
    ~Speaking() = default;
};

/// To be called by the constructor of a widget that is Speaking.
void installAccessible();

/// What a widget is to a screen reader, where Qt cannot know it. Before the widget gets its name.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

/// To be called after each change of a Speaking widget's value.
void tellSpoken(QWidget &widget, double value);

} // namespace tarnovel::app
