#include "export/ExportNames.h"

#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace tarnovel::ExportNames {

namespace {

constexpr int mostCharacters = 120;
constexpr qsizetype mostBytes = 255;

/// The longest beginning of whole user-perceived characters within both limits.
QString cut(const QString &name, qsizetype bytes)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
    qsizetype end = 0;
    for (int count = 0; count < mostCharacters; ++count) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0 || name.left(next).toUtf8().size() > bytes) {
            break;
        }
        end = next;
    }
    return name.left(end);
}

} // namespace

QString fileName(const QString &photoName, const QString &extension, int attempt)
{
    const QString tail =
        u"-framed"_s + (attempt == 0 ? QString() : u'-' + QString::number(attempt + 1)) + u'.' + extension;
    QString name = photoName;
    for (const QChar separator : {u'/', u':', u'\\'}) {
        name.replace(separator, u'_');
    }
    // A NUL would end the path; the other control characters only confuse.
    for (QChar &character : name) {
        if (character.category() == QChar::Other_Control) {
            character = u'_';
        }
    }
    name = cut(name, mostBytes - tail.toUtf8().size());
    return (name.isEmpty() ? u"Photo"_s : name) + tail;
}

} // namespace tarnovel::ExportNames
