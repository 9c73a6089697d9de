#pragma once

#include <QWidget>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

class Button;
class NumberField;

/// A whole number with a button to each side.
class Stepper : public QWidget {
    Q_OBJECT

public:
    Stepper(Phrase name, int low, int high, QWidget *parent = nullptr);

    /// Nobody is told.
    void setValue(int value);
    void setRange(int low, int high);

Q_SIGNALS:
    void changed(int value);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void tell(int value);

    int m_low;
    int m_high;
    int m_value;
    NumberField *m_field;
    Button *m_less;
    Button *m_more;
};

} // namespace tarnovel::app
