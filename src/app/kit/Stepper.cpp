#include "app/kit/Stepper.h"

#include <algorithm>
#include <utility>

#include <QBoxLayout>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

Stepper::Stepper(Phrase name, int low, int high, QWidget *parent)
    : QWidget(parent),
      m_low(low),
      m_high(high),
      m_value(low),
      m_field(new NumberField(std::move(name), {double(low), double(high), 1, 0, {}})),
      m_less(
          new Button(Button::Kind::Ghost, said({"减少", "Less", "Moins"}), "minus", Button::Face::IconOnly)),
      m_more(new Button(Button::Kind::Ghost, said({"增加", "More", "Plus"}), "plus", Button::Face::IconOnly))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    m_field->setFixedWidth(40);
    m_field->setHeight(32);
    m_field->setAlignment(Qt::AlignCenter);
    m_field->setTextMargins(0, 0, 0, 0);
    for (Button *button : {m_less, m_more}) {
        button->setIconSizePx(16);
    }
    row->addWidget(m_less);
    row->addWidget(m_field);
    row->addWidget(m_more);
    connect(m_less, &QPushButton::clicked, this, [this] { tell(m_value - 1); });
    connect(m_more, &QPushButton::clicked, this, [this] { tell(m_value + 1); });
    connect(m_field, &NumberField::valueTyped, this, [this](double value) { tell(qRound(value)); });
}

void Stepper::setValue(int value)
{
    m_value = value;
    m_field->setValue(value);
    m_less->setEnabled(value > m_low);
    m_more->setEnabled(value < m_high);
}

void Stepper::setRange(int low, int high)
{
    m_low = low;
    m_high = high;
    m_field->setRange({double(low), double(high), 1, 0, {}});
    setValue(m_value);
}

void Stepper::tell(int value)
{
    setValue(std::clamp(value, m_low, m_high));
    Q_EMIT changed(m_value);
}

void Stepper::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Paint::rounded(painter, rect(), 8, theme().surfaceMuted);
}

} // namespace tarnovel::app
