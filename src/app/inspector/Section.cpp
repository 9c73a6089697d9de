#include "app/inspector/Section.h"

#include <utility>

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "app/kit/Field.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

class Rule : public QWidget {
public:
    using QWidget::QWidget;
    QSize sizeHint() const override { return {20, 25}; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::hairline(painter, QPointF(0, 10), QPointF(width(), 10));
    }
};

class IconBox : public QWidget {
public:
    explicit IconBox(const char *icon) : m_icon(icon) { setFixedSize(16, 16); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Icons::draw(painter, m_icon, {0, 0}, 16, theme().inkSecondary);
    }

private:
    const char *m_icon;
};

} // namespace

QWidget *makeRule()
{
    auto *rule = new Rule;
    rule->setFixedHeight(rule->sizeHint().height());
    return rule;
}

QWidget *makeHint(const char *icon, Phrase phrase)
{
    auto *hint = new QWidget;
    auto *row = new QHBoxLayout(hint);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(new IconBox(icon), 0, Qt::AlignTop);
    auto *label = new Label(Type::Body, std::move(phrase), Label::Tone::Secondary);
    QFont font = typeFont(Type::Label);
    font.setWeight(QFont::Normal);
    label->setFont(font);
    // The icon stands by the first line.
    label->setAlignment(Qt::AlignTop);
    row->addWidget(label, 1);
    return hint;
}

Ink inkOf(const QColor &color)
{
    return {color.red() / 255.0, color.green() / 255.0, color.blue() / 255.0};
}

std::function<void(TextLayer &)> typed(const QString &text)
{
    return [text](TextLayer &layer) {
        layer.visible = layer.visible || layer.text != text;
        layer.text = text;
    };
}

Section::Section(const EditingContext &context, QWidget *parent)
    : QWidget(parent), m_context(context), m_column(new QVBoxLayout)
{
    m_column->setContentsMargins(20, 0, 20, 16);
    m_column->setSpacing(0);
    // Free height belongs below the last control, whatever the controls would take.
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addLayout(m_column);
    whole->addStretch(1);
    connect(&context.model, &EditorModel::changed, this, [this] {
        if (isVisible()) {
            refresh();
        }
    });
}

void Section::refresh()
{
    const PhotoItem *photo = model().current();
    if (!photo) {
        return;
    }
    // What was being typed was meant for the photo before.
    if (m_photo != photo->id) {
        m_photo = photo->id;
        for (Field *field : findChildren<Field *>()) {
            field->setModified(false);
        }
    }
    display(*photo);
}

void Section::showEvent(QShowEvent *event)
{
    refresh();
    QWidget::showEvent(event);
}

void Section::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && isVisible()) {
        refresh();
    }
    QWidget::changeEvent(event);
}

void Section::addRule()
{
    m_column->addWidget(makeRule());
}

void Section::addHeading(Phrase phrase)
{
    auto *label = new Label(Type::Label, std::move(phrase));
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    m_column->addWidget(label);
    m_column->addSpacing(8);
}

void Section::addHint(const char *icon, Phrase phrase)
{
    m_column->addWidget(makeHint(icon, std::move(phrase)));
}

} // namespace tarnovel::app
