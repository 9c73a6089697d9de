#include "app/export/NameField.h"

#include <array>
#include <utility>

#include <QBoxLayout>
#include <QRegularExpressionValidator>
#include <QTimer>

#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "export/ExportNames.h"
#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int refusalMs = 400;

struct Insertable {
    const char *field;
    Text title;
};

constexpr std::array<Insertable, 5> insertable = {{{"{name}", {"名称", "Name", "Nom"}},
                                                   {"{n:2}", {"序号", "Number", "Numéro"}},
                                                   {"{date:yyyy-MM-dd}", {"日期", "Date", "Date"}},
                                                   {"{camera}", {"相机", "Camera", "Appareil"}},
                                                   {"{size}", {"尺寸", "Size", "Taille"}}}};

const QString defaultText = u"{name}-framed"_s;

} // namespace

NameField::NameField()
    : m_field(new Field(said({"文件名", "File name", "Nom de fichier"}))), m_example(nullptr)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    m_field->setObjectName(u"namePattern"_s);
    m_field->setGivesKeyboardBack(true);
    m_field->setText(defaultText);
    // What no file system takes is not typed; a colon is part of a field's format.
    m_field->setValidator(
        new QRegularExpressionValidator(QRegularExpression(u"[^/\\\\*?\"<>|]*"_s), m_field));
    column->addWidget(m_field);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(4);
    for (const Insertable &each : insertable) {
        auto *button = new Button(Button::Kind::Secondary, said(each.title));
        button->setHeight(28);
        // A click leaves the keyboard, and what is typed, with the field.
        button->setFocusPolicy(Qt::TabFocus);
        button->setObjectName(QString::fromLatin1(each.field));
        button->setHint(said({"插入字段", "Insert a field", "Insérer un champ"}));
        connect(button, &QPushButton::clicked, this,
                [this, field = QString::fromLatin1(each.field)] { insert(field); });
        buttons->addWidget(button);
    }
    buttons->addStretch();
    column->addLayout(buttons);
    auto *hint = makeHint("image", [this] { return exampleText(); });
    m_example = hint->findChild<Label *>();
    column->addWidget(hint);
    connect(m_field, &QLineEdit::textEdited, this, &NameField::take);
    connect(m_field, &QLineEdit::editingFinished, this, [this] {
        // A faulty one stays to be mended; the last one without fault is used meanwhile.
        if (m_field->text().isEmpty()) {
            m_field->setText(defaultText);
            take();
        }
    });
    connect(m_field, &QLineEdit::inputRejected, this, [this] {
        m_field->setFault(true);
        QTimer::singleShot(refusalMs, m_field,
                           [this] { m_field->setFault(FieldPattern(m_field->text()).fault().has_value()); });
    });
}

void NameField::display(const QString &pattern)
{
    m_field->display(pattern.isEmpty() ? defaultText : pattern);
    m_example->refresh();
}

void NameField::setExample(const FieldValues &values, const QString &extension)
{
    m_values = values;
    m_extension = extension;
    m_example->refresh();
}

void NameField::insert(const QString &field)
{
    m_field->insert(field);
    take();
    m_field->setFocus(Qt::OtherFocusReason);
}

void NameField::take()
{
    const QString text = m_field->text();
    const bool faulty = FieldPattern(text).fault().has_value();
    m_field->setFault(faulty);
    m_example->setTone(faulty ? Label::Tone::Danger : Label::Tone::Secondary);
    m_example->refresh();
    if (!faulty) {
        Q_EMIT typed(text == defaultText ? QString() : text);
    }
}

QString NameField::exampleText() const
{
    const FieldPattern pattern(m_field->text());
    if (pattern.fault()) {
        return patternFaultText(*pattern.fault());
    }
    return m_field->text().isEmpty() ? QString() : ExportNames::fileName(pattern, m_values, m_extension, 0);
}

} // namespace tarnovel::app
