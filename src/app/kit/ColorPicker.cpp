#include "app/kit/ColorPicker.h"

#include <algorithm>
#include <cmath>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QRegularExpression>

#include "app/kit/Button.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr float keyStep = 0.01F;
constexpr int knob = 16;

void paintKnob(QPainter &painter, QPointF centre, const QColor &color, bool focused)
{
    const QRectF ball(centre - QPointF(knob / 2.0, knob / 2.0), QSizeF(knob, knob));
    Paint::rounded(painter, ball, knob / 2.0, color);
    Paint::outline(painter, ball, knob / 2.0, Qt::white, 2);
    QColor edge = Qt::black;
    edge.setAlphaF(0.3F);
    Paint::outline(painter, ball.adjusted(-1, -1, 1, 1), knob, focused ? theme().accent : edge,
                   focused ? 2 : 1);
}

class Sample : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 8, palette().color(QPalette::Window));
        Paint::outline(painter, rect(), 8, theme().rim);
    }
};

} // namespace

ColorField::ColorField(QWidget *parent) : QWidget(parent)
{
    installAccessible();
    setFixedHeight(sizeHint().height());
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
}

void ColorField::setColor(float hue, float saturation, float value)
{
    m_hue = hue;
    m_saturation = saturation;
    m_value = value;
    update();
}

SpokenValue ColorField::spoken() const
{
    const int saturation = qRound(m_saturation * 100);
    const QString text = localized(
        {"饱和度 %1 %，明度 %2 %", "Saturation %1 %, brightness %2 %", "Saturation %1 %, luminosité %2 %"});
    return {double(saturation), 0, 100, 1, text.arg(saturation).arg(qRound(m_value * 100))};
}

void ColorField::takeSpoken(double value)
{
    tell(static_cast<float>(value / 100), m_value);
    Q_EMIT released();
}

void ColorField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QLinearGradient across(0, 0, width(), 0);
    across.setColorAt(0, Qt::white);
    across.setColorAt(1, QColor::fromHsvF(m_hue, 1, 1));
    QLinearGradient down(0, 0, 0, height());
    down.setColorAt(0, Qt::transparent);
    down.setColorAt(1, Qt::black);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(across);
    painter.drawRoundedRect(rect(), 8, 8);
    painter.setBrush(down);
    painter.drawRoundedRect(rect(), 8, 8);
    const double room = knob / 2.0 + 1;
    const QPointF centre(std::clamp(double(m_saturation) * width(), room, width() - room),
                         std::clamp((1.0 - double(m_value)) * height(), room, height() - room));
    paintKnob(painter, centre, QColor::fromHsvF(m_hue, m_saturation, m_value), hasFocus());
}

void ColorField::tell(float saturation, float value)
{
    m_saturation = std::clamp(saturation, 0.F, 1.F);
    m_value = std::clamp(value, 0.F, 1.F);
    update();
    tellSpoken(*this, m_saturation * 100);
    Q_EMIT picked(m_saturation, m_value);
}

void ColorField::pick(QPointF position)
{
    tell(static_cast<float>(position.x() / width()), static_cast<float>(1 - position.y() / height()));
}

void ColorField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        pick(event->position());
    }
}

void ColorField::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        pick(event->position());
    }
}

void ColorField::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        Q_EMIT released();
    }
}

void ColorField::keyPressEvent(QKeyEvent *event)
{
    const float step = event->modifiers() & Qt::ShiftModifier ? 10 * keyStep : keyStep;
    switch (event->key()) {
    case Qt::Key_Left:
        tell(m_saturation - step, m_value);
        break;
    case Qt::Key_Right:
        tell(m_saturation + step, m_value);
        break;
    case Qt::Key_Up:
        tell(m_saturation, m_value + step);
        break;
    case Qt::Key_Down:
        tell(m_saturation, m_value - step);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

HueBar::HueBar(QWidget *parent) : QWidget(parent)
{
    installAccessible();
    setFixedHeight(sizeHint().height());
    setFocusPolicy(Qt::StrongFocus);
}

void HueBar::setHue(float hue)
{
    m_hue = hue;
    update();
}

SpokenValue HueBar::spoken() const
{
    const int degrees = qRound(m_hue * 360);
    return {double(degrees), 0, 360, 1, QString::number(degrees) + u'°'};
}

void HueBar::takeSpoken(double value)
{
    tell(static_cast<float>(value / 360));
    Q_EMIT released();
}

void HueBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QLinearGradient hues(0, 0, width(), 0);
    for (int i = 0; i <= 6; ++i) {
        hues.setColorAt(i / 6.0, QColor::fromHsvF(i == 6 ? 0 : static_cast<float>(i) / 6.F, 1, 1));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(hues);
    painter.drawRoundedRect(QRectF(0, 2, width(), 12), 6, 6);
    const double centre = knob / 2.0 + 1 + double(m_hue) * (width() - knob - 2);
    paintKnob(painter, {centre, height() / 2.0}, QColor::fromHsvF(m_hue, 1, 1), hasFocus());
}

void HueBar::tell(float hue)
{
    m_hue = std::clamp(hue, 0.F, 1.F);
    update();
    tellSpoken(*this, m_hue * 360);
    Q_EMIT picked(m_hue);
}

void HueBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        pick(event->position().x());
    }
}

void HueBar::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        pick(event->position().x());
    }
}

void HueBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        Q_EMIT released();
    }
}

void HueBar::pick(double x)
{
    tell(static_cast<float>((x - knob / 2.0) / (width() - knob)));
}

void HueBar::keyPressEvent(QKeyEvent *event)
{
    const float step = event->modifiers() & Qt::ShiftModifier ? 10 * keyStep : keyStep;
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Down) {
        tell(m_hue - step);
    } else if (event->key() == Qt::Key_Right || event->key() == Qt::Key_Up) {
        tell(m_hue + step);
    } else {
        QWidget::keyPressEvent(event);
    }
}

ColorPicker::ColorPicker(Dropper dropper, QWidget *parent)
    : QWidget(parent),
      m_field(new ColorField),
      m_bar(new HueBar),
      m_sample(new Sample),
      m_hex(new Field(said({"十六进制颜色", "Hexadecimal color", "Couleur hexadécimale"})))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addWidget(m_field);
    column->addWidget(m_bar);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_sample->setFixedSize(32, 32);
    row->addWidget(m_sample);
    m_hex->setPrefix(u"#"_s);
    m_hex->setMaxLength(7);
    row->addWidget(m_hex, 1);
    if (dropper == Dropper::Yes) {
        auto *take = new Button(Button::Kind::Secondary,
                                said({"从画面取色", "Pick a color from the picture", "Prélever une couleur"}),
                                "dropper", Button::Face::IconOnly);
        take->setObjectName(u"dropper"_s);
        connect(take, &QPushButton::clicked, this, &ColorPicker::dropperRequested);
        row->addWidget(take);
    }
    column->addLayout(row);
    connect(m_field, &ColorField::picked, this,
            [this](float saturation, float value) { tell(QColor::fromHsvF(m_hue, saturation, value)); });
    connect(m_bar, &HueBar::picked, this, [this](float hue) {
        m_hue = hue;
        tell(QColor::fromHsvF(hue, m_color.hsvSaturationF(), m_color.valueF()));
    });
    connect(m_field, &ColorField::released, this, &ColorPicker::released);
    connect(m_bar, &HueBar::released, this, &ColorPicker::released);
    connect(m_hex, &QLineEdit::editingFinished, this, [this] {
        static const QRegularExpression digits(u"^#?([0-9a-fA-F]{6}|[0-9a-fA-F]{3})$"_s);
        const QRegularExpressionMatch match = digits.match(m_hex->text().trimmed());
        if (m_hex->isModified() && match.hasMatch()) {
            const QColor typed(u'#' + match.captured(1));
            m_hex->setModified(false);
            if (typed.rgb() != m_color.rgb()) {
                setColor(typed);
                Q_EMIT changed(typed);
                Q_EMIT released();
                return;
            }
        }
        m_hex->setModified(false);
        m_hex->display(m_color.name().mid(1).toUpper());
    });
    nameParts();
}

void ColorPicker::nameParts()
{
    m_field->setAccessibleName(
        localized({"饱和度与明度", "Saturation and brightness", "Saturation et luminosité"}));
    m_bar->setAccessibleName(localized({"色相", "Hue", "Teinte"}));
}

void ColorPicker::setColor(const QColor &color)
{
    if (color.rgb() == m_color.rgb() && !m_hex->text().isEmpty()) {
        return;
    }
    // Greys have no hue of their own: the bar stays where it was.
    if (color.hsvHueF() >= 0) {
        m_hue = color.hsvHueF();
    }
    show(color);
}

void ColorPicker::show(const QColor &color)
{
    m_color = color;
    m_field->setColor(m_hue, color.hsvSaturationF(), color.valueF());
    m_bar->setHue(m_hue);
    QPalette sample = m_sample->palette();
    sample.setColor(QPalette::Window, color);
    m_sample->setPalette(sample);
    m_hex->display(color.name().mid(1).toUpper());
}

void ColorPicker::tell(const QColor &color)
{
    show(color);
    Q_EMIT changed(color);
}

void ColorPicker::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        nameParts();
    }
    QWidget::changeEvent(event);
}

} // namespace tarnovel::app
