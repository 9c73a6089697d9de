#include "app/inspector/PictureHolder.h"

#include <QBoxLayout>

#include "app/inspector/EmptyState.h"
#include "app/inspector/PictureWell.h"
#include "app/inspector/Section.h"
#include "app/kit/Button.h"

namespace tarnovel::app {

PictureHolder::PictureHolder(const Words &words)
    : m_well(new PictureWell), m_change(new QWidget), m_controls(new QWidget)
{
    auto *first = new Button(Button::Kind::Secondary, words.choose, words.chooseIcon);
    m_empty = new EmptyState(words.icon, words.heading, words.text, first);
    auto *other = new Button(Button::Kind::Secondary, words.replace, words.chooseIcon);
    other->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto *remove = new Button(Button::Kind::Secondary, words.remove, "trash", Button::Face::IconOnly);
    auto *row = new QHBoxLayout(m_change);
    row->setContentsMargins(0, 12, 0, 0);
    row->setSpacing(8);
    row->addWidget(other, 1);
    row->addWidget(remove);
    m_column = new QVBoxLayout(m_controls);
    m_column->setContentsMargins(0, 12, 0, 0);
    m_column->addWidget(makeRule());
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (QWidget *part : std::initializer_list<QWidget *>{m_well, m_empty, m_change, m_controls}) {
        column->addWidget(part);
    }
    remove->setObjectName(words.removeName);
    connect(remove, &QPushButton::clicked, this, &PictureHolder::removeAsked);
    for (Button *button : {first, other}) {
        button->setObjectName(words.chooseName);
        connect(button, &QPushButton::clicked, this, &PictureHolder::chooseAsked);
    }
}

void PictureHolder::setPresent(bool present)
{
    m_empty->setVisible(!present);
    for (QWidget *part : std::initializer_list<QWidget *>{m_well, m_change, m_controls}) {
        part->setVisible(present);
    }
}

} // namespace tarnovel::app
