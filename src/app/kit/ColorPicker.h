#pragma once

#include <QWidget>

#include "app/kit/Accessible.h"
#include "app/kit/Field.h"

namespace tarnovel::app {

class Button;

/// Saturation and brightness of one hue in a field, to be dragged or moved with the arrows.
class ColorField : public QWidget, public Speaking {
    Q_OBJECT

public:
    explicit ColorField(QWidget *parent = nullptr);
    void setColor(float hue, float saturation, float value);
    /// Saturation, which the arrows sideways change; both are written.
    SpokenValue spoken() const override;
    void takeSpoken(double value) override;
    QSize sizeHint() const override { return {264, 128}; }

Q_SIGNALS:
    void picked(float saturation, float value);
    void released();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void pick(QPointF position);
    void tell(float saturation, float value);
    float m_hue = 0;
    float m_saturation = 0;
    float m_value = 0;
};

/// The hues in a bar.
class HueBar : public QWidget, public Speaking {
    Q_OBJECT

public:
    explicit HueBar(QWidget *parent = nullptr);
    void setHue(float hue);
    /// In degrees.
    SpokenValue spoken() const override;
    void takeSpoken(double value) override;
    QSize sizeHint() const override { return {264, 16}; }

Q_SIGNALS:
    void picked(float hue);
    void released();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void pick(double x);
    void tell(float hue);
    float m_hue = 0;
};

/// Any colour: by field and hue, as hexadecimal digits, or taken from the picture.
class ColorPicker : public QWidget {
    Q_OBJECT

public:
    enum class Dropper { No, Yes };
    explicit ColorPicker(Dropper dropper = Dropper::Yes, QWidget *parent = nullptr);

    /// Nobody is told.
    void setColor(const QColor &color);

Q_SIGNALS:
    void changed(const QColor &color);
    void released();
    /// The next click on the picture is to give the colour.
    void dropperRequested();

protected:
    void changeEvent(QEvent *event) override;

private:
    void show(const QColor &color);
    void tell(const QColor &color);
    void nameParts();

    float m_hue = 0;
    QColor m_color = Qt::black;
    ColorField *m_field;
    HueBar *m_bar;
    QWidget *m_sample;
    Field *m_hex;
};

} // namespace tarnovel::app
