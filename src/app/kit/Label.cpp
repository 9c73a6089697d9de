#include "app/kit/Label.h"

#include <utility>

#include <QEvent>

namespace tarnovel::app {

Label::Label(Type type, Phrase phrase, Tone tone, QWidget *parent)
    : QLabel(parent), m_phrase(std::move(phrase))
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

void Label::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        refresh();
    }
    QLabel::changeEvent(event);
}

} // namespace tarnovel::app
