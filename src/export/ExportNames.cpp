#include "export/ExportNames.h"

#include <algorithm>
#include <utility>

#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace tarnovel::ExportNames {

namespace {

constexpr qsizetype mostCharacters = 120;
constexpr qsizetype mostBytes = 255;

qsizetype bytesOf(const QString &text)
{
    return text.toUtf8().size();
}

/// The longest beginning of whole user-perceived characters within both limits.
QString cut(const QString &text, qsizetype characters, qsizetype bytes)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (qsizetype count = 0; count < characters; ++count) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0 || bytesOf(text.left(next)) > bytes) {
            break;
        }
        end = next;
    }
    return text.left(end);
}

/// A NUL would end the path; the other control characters only confuse.
QString withoutSeparators(QString text)
{
    for (QChar &character : text) {
        if (character == u'/' || character == u':' || character == u'\\' ||
            character.category() == QChar::Other_Control) {
            character = u'_';
        }
    }
    return text;
}

} // namespace

FieldPattern defaultPattern(bool severalSizes)
{
    return FieldPattern(severalSizes ? u"{name}-framed-{size}"_s : u"{name}-framed"_s);
}

QString fileName(const FieldPattern &pattern, const FieldValues &values, const QString &extension,
                 int attempt)
{
    const QString tail = (attempt == 0 ? QString() : u'-' + QString::number(attempt + 1)) + u'.' + extension;
    const qsizetype room = mostBytes - bytesOf(tail);
    FieldValues held = values;
    held.name = cut(withoutSeparators(values.name), mostCharacters, mostBytes);
    if (held.name.isEmpty()) {
        held.name = u"Photo"_s;
    }
    QString stem = withoutSeparators(pattern.filled(held));
    const auto times =
        std::ranges::count(pattern.pieces(), FieldPattern::Field::Name, &FieldPattern::Piece::field);
    if (const qsizetype over = bytesOf(stem) - room; over > 0 && times > 0) {
        const qsizetype fewer = (over + times - 1) / times;
        held.name = cut(held.name, mostCharacters, std::max<qsizetype>(0, bytesOf(held.name) - fewer));
        stem = withoutSeparators(pattern.filled(held));
    }
    stem = cut(stem, stem.size(), room);
    return (stem.isEmpty() ? u"Photo"_s : stem) + tail;
}

QString fileName(const QString &photoName, const QString &extension, int attempt)
{
    static const FieldPattern pattern = defaultPattern(false);
    FieldValues values;
    values.name = photoName;
    return fileName(pattern, values, extension, attempt);
}

Plan::Plan(FieldPattern pattern, QString extension)
    : m_pattern(std::move(pattern)), m_extension(std::move(extension))
{
}

int Plan::attempt(const FieldValues &values)
{
    // A name that is there a thousand times is not tried from the beginning each time.
    int &next = m_next[qHash(name(values, 0))];
    while (!m_given.insert(qHash(name(values, next))).second) {
        ++next;
    }
    return next++;
}

} // namespace tarnovel::ExportNames
