#include <utility>

#include <QBoxLayout>

#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int questionWidth = 336;
constexpr int wideQuestionWidth = 440;
constexpr int margin = 20;

Overlay *card(QWidget *anchor, const Phrase &title, const Phrase &text)
{
    auto *overlay = new Overlay(Overlay::Kind::Popover, anchor, title);
    overlay->anchorTo(anchor);
    overlay->setCardSize({questionWidth, 0});
    overlay->column()->setContentsMargins(margin, margin, margin, margin);
    overlay->column()->setSpacing(8);
    overlay->column()->addWidget(new Label(Type::Heading, title));
    if (text) {
        overlay->column()->addWidget(new Label(Type::Body, text, Label::Tone::Secondary));
    }
    return overlay;
}

QHBoxLayout *buttons(Overlay *overlay, Button *confirm)
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 8, 0, 0);
    row->setSpacing(8);
    row->addStretch();
    auto *cancel = new Button(Button::Kind::Secondary, said({"取消", "Cancel", "Annuler"}));
    cancel->setObjectName(u"cancel"_s);
    confirm->setObjectName(u"confirm"_s);
    QObject::connect(cancel, &QPushButton::clicked, overlay, &Overlay::close);
    row->addWidget(cancel);
    row->addWidget(confirm);
    overlay->column()->addLayout(row);
    return row;
}

} // namespace

Overlay *ask(QWidget *anchor, const Question &question, std::function<void()> confirmed)
{
    Overlay *overlay = card(anchor, question.title, question.text);
    auto *confirm = new Button(Button::Kind::Danger, question.confirm);
    buttons(overlay, confirm);
    QObject::connect(confirm, &QPushButton::clicked, overlay, [overlay, confirmed = std::move(confirmed)] {
        overlay->close();
        confirmed();
    });
    overlay->open();
    return overlay;
}

Overlay *askTwoWays(QWidget *anchor, const Question &question, std::function<void()> confirmed,
                    const Phrase &second, std::function<void()> secondChosen)
{
    Overlay *overlay = card(anchor, question.title, question.text);
    overlay->setCardSize({wideQuestionWidth, 0});
    auto *confirm = new Button(Button::Kind::Primary, question.confirm);
    auto *other = new Button(Button::Kind::DangerGhost, second);
    other->setObjectName(u"secondAnswer"_s);
    buttons(overlay, confirm)->insertWidget(0, other);
    const auto answers = [overlay](Button *button, std::function<void()> answer) {
        QObject::connect(button, &QPushButton::clicked, overlay, [overlay, answer = std::move(answer)] {
            overlay->close();
            answer();
        });
    };
    answers(confirm, std::move(confirmed));
    answers(other, std::move(secondChosen));
    overlay->open();
    confirm->setFocus();
    return overlay;
}

Overlay *askText(QWidget *anchor, const TextQuestion &question,
                 std::function<QString(const QString &)> accept)
{
    Overlay *overlay = card(anchor, question.title, question.text);
    auto *field = new Field(question.fieldName);
    if (question.icon) {
        field->setIconName(question.icon);
    }
    field->setText(question.value);
    field->selectAll();
    overlay->column()->addWidget(field);
    auto *complaint = new Label(Type::Caption, {}, Label::Tone::Danger);
    complaint->hide();
    overlay->column()->addWidget(complaint);
    auto *confirm = new Button(Button::Kind::Primary, question.confirm);
    buttons(overlay, confirm);
    const auto take = [=, accept = std::move(accept)] {
        const QString fault = accept(field->text());
        if (fault.isEmpty()) {
            overlay->close();
            return;
        }
        field->setFault(true);
        complaint->setPhrase([text = QString(fault)]() mutable { return text; });
        complaint->show();
        field->setFocus();
    };
    QObject::connect(confirm, &QPushButton::clicked, overlay, take);
    QObject::connect(field, &QLineEdit::returnPressed, overlay, take);
    QObject::connect(field, &QLineEdit::textEdited, complaint, [field, complaint] {
        field->setFault(false);
        complaint->hide();
    });
    overlay->open();
    return overlay;
}

} // namespace tarnovel::app
