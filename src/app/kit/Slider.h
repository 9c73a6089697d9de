#pragma once

#include <functional>

#include <QSlider>

#include "app/kit/Accessible.h"
#include "app/kit/Field.h"
#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A slider's track and knob.
class SliderTrack : public QSlider, public Speaking {
    Q_OBJECT

public:
    enum class Origin { Low, Centre };

    explicit SliderTrack(Origin origin, QWidget *parent = nullptr);

    /// How many of the track's units one of the shown values has, and how that value is written.
    void setShown(double unit, std::function<QString(double value)> text);
    SpokenValue spoken() const override;
    void takeSpoken(double value) override;
    QSize sizeHint() const override { return {120, 24}; }
    QSize minimumSizeHint() const override { return {60, 24}; }

Q_SIGNALS:
    void resetRequested();
    /// The hand has let go, or the keyboard has gone elsewhere.
    void released();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    double knobCentre() const;
    int valueAt(double x) const;

    Origin m_origin;
    bool m_grabbed = false;
    double m_unit = 1;
    std::function<QString(double)> m_text = [](double value) { return QString::number(value); };
};

/// A value with its name, a field to type it and a slider to drag it.
class Slider : public QWidget {
    Q_OBJECT

public:
    struct Range {
        double low = 0;
        double high = 100;
        /// Of the arrows; Shift takes ten.
        double step = 1;
        int decimals = 0;
        QString unit = {};
        /// Where a double click goes.
        double usual = 0;
        SliderTrack::Origin origin = SliderTrack::Origin::Low;
    };

    Slider(Phrase name, const Range &range, QWidget *parent = nullptr);

    double value() const { return m_field->value(); }
    /// Nobody is told.
    void setValue(double value);

Q_SIGNALS:
    void changed(double value);
    /// A drag has ended.
    void released();

protected:
    void changeEvent(QEvent *event) override;

private:
    void tell(double value);

    Phrase m_name;
    Range m_range;
    NumberField *m_field;
    SliderTrack *m_track;
    bool m_showing = false;
};

} // namespace tarnovel::app
