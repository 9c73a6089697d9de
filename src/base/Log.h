#pragma once

#include <QLoggingCategory>
#include <QStringList>

namespace tarnovel {

/// Where the program says what went wrong and why, for those who ask: a category a room. Nothing of it is
/// printed unless QT_LOGGING_RULES turns "tarnovel" on or `printLog` was called; the last lines are kept.
Q_DECLARE_LOGGING_CATEGORY(logModel)
Q_DECLARE_LOGGING_CATEGORY(logImaging)
Q_DECLARE_LOGGING_CATEGORY(logDecoder)
Q_DECLARE_LOGGING_CATEGORY(logEditor)
Q_DECLARE_LOGGING_CATEGORY(logExport)
Q_DECLARE_LOGGING_CATEGORY(logCollage)
Q_DECLARE_LOGGING_CATEGORY(logHandwriting)
Q_DECLARE_LOGGING_CATEGORY(logApp)
Q_DECLARE_LOGGING_CATEGORY(logCli)

/// Keeps the program's own lines from here on; all others go on to whoever took messages before.
void installLog();

/// Prints the program's lines on standard error, too.
void printLog();

/// The last lines, oldest first, with time and category; at most two hundred. From any thread.
QStringList lastLogLines();

} // namespace tarnovel
