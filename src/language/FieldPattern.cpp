#include "language/FieldPattern.h"

#include <algorithm>
#include <array>
#include <utility>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

using Field = FieldPattern::Field;

constexpr std::array<std::pair<Field, const char *>, 17> fieldNames = {{{Field::Name, "name"},
                                                                        {Field::Number, "n"},
                                                                        {Field::Count, "count"},
                                                                        {Field::Date, "date"},
                                                                        {Field::Time, "time"},
                                                                        {Field::Camera, "camera"},
                                                                        {Field::Make, "make"},
                                                                        {Field::Model, "model"},
                                                                        {Field::Lens, "lens"},
                                                                        {Field::Focal, "focal"},
                                                                        {Field::Aperture, "aperture"},
                                                                        {Field::Shutter, "shutter"},
                                                                        {Field::Iso, "iso"},
                                                                        {Field::Template, "template"},
                                                                        {Field::Size, "size"},
                                                                        {Field::Width, "width"},
                                                                        {Field::Height, "height"}}};

/// The most digits that a number in a list can need.
constexpr int mostDigits = 9;

bool isFormat(Field field, const QString &format)
{
    if (field == Field::Number) {
        bool number = false;
        const int digits = format.toInt(&number);
        return number && digits >= 1 && digits <= mostDigits && format.size() == 1;
    }
    return field == Field::Date && !format.isEmpty();
}

/// Make and model without saying the make twice: "Canon EOS R5", "FUJIFILM X-T5".
QString cameraName(const QString &make, const QString &model)
{
    const QString brand = make.section(u' ', 0, 0);
    if (make.isEmpty() || model.startsWith(make, Qt::CaseInsensitive) ||
        model.startsWith(brand + u' ', Qt::CaseInsensitive)) {
        return model;
    }
    return model.isEmpty() ? make : make + u' ' + model;
}

QString positive(int number)
{
    return number > 0 ? QString::number(number) : QString();
}

} // namespace

FieldPattern::FieldPattern(const QString &typed)
{
    qsizetype at = 0;
    while (at < typed.size()) {
        const QChar character = typed.at(at);
        const bool brace = character == u'{' || character == u'}';
        if (!brace) {
            const auto next = std::find_if(typed.begin() + at, typed.end(),
                                           [](QChar each) { return each == u'{' || each == u'}'; });
            const qsizetype end = next - typed.begin();
            addText(typed.mid(at, end - at), at, end - at);
            at = end;
            continue;
        }
        if (at + 1 < typed.size() && typed.at(at + 1) == character) {
            addText(QString(character), at, 2);
            at += 2;
            continue;
        }
        const qsizetype end = character == u'{' ? typed.indexOf(u'}', at) : -1;
        if (end < 0) {
            addFault(character == u'{' ? Fault::Kind::NotClosed : Fault::Kind::NotOpened, {}, character, at);
            at += 1;
            continue;
        }
        addField(typed.mid(at + 1, end - at - 1), at);
        at = end + 1;
    }
}

void FieldPattern::addField(const QString &inside, qsizetype begin)
{
    const qsizetype colon = inside.indexOf(u':');
    const QString format = colon < 0 ? QString() : inside.mid(colon + 1);
    const std::optional<Field> field = fieldNamed(inside.left(colon < 0 ? inside.size() : colon));
    if (!field) {
        addFault(Fault::Kind::UnknownField, inside, u'{' + inside + u'}', begin);
    } else if (colon >= 0 && !isFormat(*field, format)) {
        addFault(Fault::Kind::BadFormat, inside, u'{' + inside + u'}', begin);
    } else {
        m_pieces.push_back({*field, format, begin, inside.size() + 2});
    }
}

void FieldPattern::addText(const QString &text, qsizetype begin, qsizetype length)
{
    if (!m_pieces.empty() && m_pieces.back().field == Field::Text) {
        m_pieces.back().text += text;
        m_pieces.back().length += length;
    } else {
        m_pieces.push_back({Field::Text, text, begin, length});
    }
}

void FieldPattern::addFault(Fault::Kind kind, const QString &field, const QString &text, qsizetype begin)
{
    if (!m_fault) {
        m_fault = {kind, begin, field};
    }
    addText(text, begin, text.size());
}

bool FieldPattern::uses(Field field) const
{
    return std::ranges::any_of(m_pieces, [field](const Piece &piece) { return piece.field == field; });
}

bool FieldPattern::usesCamera() const
{
    return std::ranges::any_of(
        m_pieces, [](const Piece &piece) { return piece.field >= Field::Date && piece.field <= Field::Iso; });
}

QString FieldPattern::value(const Piece &piece, const FieldValues &values)
{
    switch (piece.field) {
    case Field::Text:
        return piece.text;
    case Field::Name:
        return values.name;
    case Field::Number:
        return QString::number(values.number).rightJustified(piece.text.toInt(), u'0');
    case Field::Count:
        return QString::number(values.count);
    case Field::Date:
        return values.taken ? values.taken->toString(piece.text.isEmpty() ? u"yyyy.MM.dd"_s : piece.text)
                            : QString();
    case Field::Time:
        return values.taken ? values.taken->toString(u"HH:mm"_s) : QString();
    case Field::Camera:
        return cameraName(values.make, values.model);
    case Field::Make:
        return values.make;
    case Field::Model:
        return values.model;
    case Field::Lens:
        return values.lens;
    case Field::Focal:
        return values.focal;
    case Field::Aperture:
        return values.aperture;
    case Field::Shutter:
        return values.shutter;
    case Field::Iso:
        return values.iso;
    case Field::Template:
        return values.templateId;
    case Field::Size:
        return values.size;
    case Field::Width:
        return positive(values.width);
    case Field::Height:
        return positive(values.height);
    }
    return {};
}

QString FieldPattern::filled(const FieldValues &values) const
{
    QString text;
    for (const Piece &piece : m_pieces) {
        text += value(piece, values);
    }
    return text;
}

QStringList FieldPattern::names()
{
    QStringList names;
    for (const auto &[field, name] : fieldNames) {
        names.append(QString::fromLatin1(name));
    }
    return names;
}

std::optional<FieldPattern::Field> FieldPattern::fieldNamed(const QString &name)
{
    for (const auto &[field, known] : fieldNames) {
        if (name == QLatin1StringView(known)) {
            return field;
        }
    }
    return std::nullopt;
}

QString patternFaultText(const FieldPattern::Fault &fault)
{
    const auto text = [&fault]() -> QString {
        switch (fault.kind) {
        case FieldPattern::Fault::Kind::UnknownField:
            return localized({"没有字段 {%2}（第 %1 个字符）", "there is no field {%2}, at character %1",
                              "il n’y a pas de champ {%2}, au caractère %1"});
        case FieldPattern::Fault::Kind::BadFormat:
            return localized({"字段 {%2} 的格式不对（第 %1 个字符）",
                              "{%2} has a format that it does not take, at character %1",
                              "{%2} a un format qui ne convient pas, au caractère %1"});
        case FieldPattern::Fault::Kind::NotClosed:
            return localized({"大括号没有闭合（第 %1 个字符）", "a brace is not closed, at character %1",
                              "une accolade n’est pas fermée, au caractère %1"});
        case FieldPattern::Fault::Kind::NotOpened:
            return localized({"多余的右大括号（第 %1 个字符）", "a brace closes nothing, at character %1",
                              "une accolade ne ferme rien, au caractère %1"});
        }
        return {};
    };
    return text().replace(u"%1"_s, QString::number(fault.position + 1)).replace(u"%2"_s, fault.field);
}

} // namespace tarnovel
