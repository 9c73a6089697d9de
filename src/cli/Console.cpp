#include "cli/Console.h"

#include <cerrno>
#include <cstdio>
#include <mutex>

#include <sys/ioctl.h>
#include <unistd.h>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace Console {

namespace {

/// The marks that reverse the direction of what follows, with which a name could disguise a message.
bool turnsTheLine(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

/// Where messages without a subject go in the meantime; they come from any thread.
struct Diversion {
    std::mutex mutex;
    QStringList *into = nullptr;
};
Diversion diversion;

void toStandardError(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

} // namespace

bool print(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    const bool written = std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) ==
                         static_cast<size_t>(bytes.size());
    if (std::fflush(stdout) == 0 && written) {
        return true;
    }
    // A reader that has gone knows it; any other trouble has to be said.
    if (errno != EPIPE) {
        complain(localized({"无法写到标准输出。", "Cannot write to standard output.",
                            "Impossible d’écrire sur la sortie standard."}));
    }
    return false;
}

QString escaped(const QString &text)
{
    QString result;
    for (const QChar character : text) {
        if (character == u'\n') {
            result += u"\\n"_s;
        } else if (character == u'\t') {
            result += u"\\t"_s;
        } else if (turnsTheLine(character) || character.category() == QChar::Other_Control ||
                   character.category() == QChar::Separator_Line ||
                   character.category() == QChar::Separator_Paragraph) {
            result += u"\\x%1"_s.arg(character.unicode(), 2, 16, QChar(u'0'));
        } else {
            result += character;
        }
    }
    return result;
}

void complain(const QString &what, const QString &message)
{
    toStandardError(u"tarnovel: "_s + escaped(what) + u": "_s + escaped(message) + u'\n');
}

void divert(QStringList *into)
{
    const std::scoped_lock lock(diversion.mutex);
    diversion.into = into;
}

void complain(const QString &message)
{
    {
        const std::scoped_lock lock(diversion.mutex);
        if (diversion.into) {
            diversion.into->append(message);
            return;
        }
    }
    toStandardError(u"tarnovel: "_s + escaped(message) + u'\n');
}

} // namespace Console

namespace {

constexpr int barWidth = 24;
constexpr const char *startOfLine = "\r\033[K";

int terminalColumns()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

ProgressBar::ProgressBar(int total, bool quiet)
    : m_total(total), m_shown(!quiet && isatty(STDERR_FILENO) != 0)
{
}

ProgressBar::~ProgressBar()
{
    clear();
}

void ProgressBar::show(int done, const QString &label)
{
    if (!m_shown) {
        return;
    }
    const int filled = m_total > 0 ? barWidth * done / m_total : 0;
    const QString bar = QString(filled, u'━') + QString(barWidth - filled, u'┄');
    QString line = u"%1 %2/%3 %4"_s.arg(bar).arg(done).arg(m_total).arg(Console::escaped(label));
    // Wide characters take two columns; half of what is left is safe for any name.
    const qsizetype room = barWidth + (terminalColumns() - barWidth) / 2;
    line = line.left(room);
    std::fputs((startOfLine + line.toStdString()).c_str(), stderr);
    std::fflush(stderr);
}

void ProgressBar::clear()
{
    if (m_shown) {
        std::fputs(startOfLine, stderr);
        std::fflush(stderr);
    }
}

} // namespace tarnovel::cli
