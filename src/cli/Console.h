#pragma once

#include <QString>
#include <QStringList>

namespace tarnovel::cli {

/// What the arguments got wrong; `message` is in the user's language.
struct UsageError {
    QString message;
};

/// The two output streams. Data goes to standard output alone, everything else to standard error.
namespace Console {

/// A line of data. False once standard output takes nothing more, as when the reader of a pipe has gone.
bool print(const QString &line);

/// "tarnovel: WHAT: MESSAGE", with control characters of `what` shown escaped.
void complain(const QString &what, const QString &message);
void complain(const QString &message);

/// While not null, what complain() is told goes there instead of standard error.
void divert(QStringList *into);

/// Control characters and line breaks as \n, \t or \xNN, so that a message stays one line.
QString escaped(const QString &text);

} // namespace Console

/// A bar on standard error, only where that is a terminal. It disappears when it is done.
class ProgressBar {
public:
    ProgressBar(int total, bool quiet);
    ~ProgressBar();
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    void show(int done, const QString &label);
    /// Takes the bar off the line, before a message is printed.
    void clear();

private:
    const int m_total;
    const bool m_shown;
};

} // namespace tarnovel::cli
