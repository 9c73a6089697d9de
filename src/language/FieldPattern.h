#pragma once

#include <optional>
#include <vector>

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace tarnovel {

/// What the fields of a pattern stand for: the facts of one photo and of its place in a list. What is not
/// known is empty, or 0.
struct FieldValues {
    QString name;
    int number = 0;
    int count = 0;
    /// The camera's own clock, without a time zone of its own.
    std::optional<QDateTime> taken;
    QString make;
    QString model;
    QString lens;
    QString focal;
    QString aperture;
    QString shutter;
    QString iso;
    /// Of a result: the template's id, its size as it was asked for, and its pixels.
    QString templateId;
    QString size;
    int width = 0;
    int height = 0;
};

/// A text with fields such as "{name}" or "{date:yyyy-MM}" in it; "{{" and "}}" are braces. It is parsed once
/// and then filled for any number of photos.
class FieldPattern {
public:
    enum class Field {
        Text,
        Name,
        Number,
        Count,
        Date,
        Time,
        Camera,
        Make,
        Model,
        Lens,
        Focal,
        Aperture,
        Shutter,
        Iso,
        Template,
        Size,
        Width,
        Height,
    };

    struct Piece {
        Field field = Field::Text;
        /// Of a text, itself; of a field, what stands behind its colon.
        QString text;
        /// Where it stands in what was typed.
        qsizetype begin = 0;
        qsizetype length = 0;
    };

    /// What is wrong with a pattern, and where, counted from 0.
    struct Fault {
        enum class Kind { UnknownField, BadFormat, NotClosed, NotOpened };
        Kind kind;
        qsizetype position = 0;
        /// The field as typed, without its braces.
        QString field;
    };

    FieldPattern() = default;
    /// Every faulty place stays in the pattern as the text that it is.
    explicit FieldPattern(const QString &typed);

    const std::optional<Fault> &fault() const { return m_fault; }
    const std::vector<Piece> &pieces() const { return m_pieces; }
    bool uses(Field field) const;
    /// Whether the camera's facts are needed to fill it.
    bool usesCamera() const;

    /// The pattern with the value of each field in its place; what is absent is empty.
    QString filled(const FieldValues &values) const;
    static QString value(const Piece &piece, const FieldValues &values);

    /// The names of all fields, as typed between braces.
    static QStringList names();
    static std::optional<Field> fieldNamed(const QString &name);

private:
    void addField(const QString &inside, qsizetype begin);
    void addText(const QString &text, qsizetype begin, qsizetype length);
    void addFault(Fault::Kind kind, const QString &field, const QString &text, qsizetype begin);

    std::vector<Piece> m_pieces;
    std::optional<Fault> m_fault;
};

/// What is wrong with the pattern, in the current language, with the place counted from 1.
QString patternFaultText(const FieldPattern::Fault &fault);

} // namespace tarnovel
