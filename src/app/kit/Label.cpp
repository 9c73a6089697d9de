#include "app/kit/Label.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QEvent>
#include <QPainter>
#include <QTextLayout>

using namespace Qt::StringLiterals;

namespace tarnovel::app {

Label::Label(Type type, Phrase phrase, Tone tone, QWidget *parent)
    : QLabel(parent), m_type(type), m_phrase(std::move(phrase))
{
    setFont(typeFont(type));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setTone(tone);
    refresh();
}

void Label::setPhrase(Phrase phrase)
{
    m_phrase = std::move(phrase);
    refresh();
}

void Label::setTone(Tone tone)
{
    switch (tone) {
    case Tone::Ink:
        setForegroundRole(QPalette::WindowText);
        break;
    case Tone::Secondary:
        setForegroundRole(QPalette::PlaceholderText);
        break;
    case Tone::Accent:
        setForegroundRole(QPalette::Link);
        break;
    case Tone::Danger:
        setForegroundRole(QPalette::BrightText);
        break;
    }
}

void Label::refresh()
{
    setText(m_phrase ? m_phrase() : QString());
}

double Label::setLines(double width, QPainter *painter, QPointF at) const
{
    QString words = text();
    words.replace(u'\n', QChar::LineSeparator);
    QTextLayout layout(words, font());
    QTextOption option(alignment() & Qt::AlignHorizontal_Mask);
    option.setWrapMode(wordWrap() ? QTextOption::WordWrap : QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    double y = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const double high = std::max<double>(lineHeight(m_type), std::ceil(line.height()));
        line.setPosition({0, y + (high - line.height()) / 2});
        y += high;
    }
    layout.endLayout();
    if (painter) {
        layout.draw(painter, at);
    }
    return y;
}

int Label::heightOf(int width) const
{
    const QMargins around = contentsMargins();
    const int inside = std::max(width - around.left() - around.right() - 2 * margin(), 1);
    return qCeil(setLines(inside, nullptr, {})) + around.top() + around.bottom() + 2 * margin();
}

QSize Label::sizeHint() const
{
    const QSize usual = QLabel::sizeHint();
    return {usual.width(), heightOf(usual.width())};
}

QSize Label::minimumSizeHint() const
{
    const QSize usual = QLabel::minimumSizeHint();
    return {usual.width(),
            wordWrap() ? std::min(usual.height(), lineHeight(m_type)) : heightOf(usual.width())};
}

int Label::heightForWidth(int width) const
{
    return wordWrap() ? heightOf(width) : QLabel::heightForWidth(width);
}

void Label::paintEvent(QPaintEvent *)
{
    const QRectF room = QRectF(contentsRect()).adjusted(margin(), margin(), -margin(), -margin());
    const double high = setLines(room.width(), nullptr, {});
    const double spare = room.height() - high;
    const double top = alignment() & Qt::AlignTop      ? 0
                       : alignment() & Qt::AlignBottom ? spare
                                                       : std::floor(spare / 2);
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    setLines(room.width(), &painter, room.topLeft() + QPointF(0, top));
}

void Label::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        refresh();
    }
    QLabel::changeEvent(event);
}

} // namespace tarnovel::app
