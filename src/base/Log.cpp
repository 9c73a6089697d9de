#include "base/Log.h"

#include <cstdio>
#include <cstring>
#include <mutex>

#include <QTime>

using namespace Qt::StringLiterals;

namespace tarnovel {

Q_LOGGING_CATEGORY(logModel, "tarnovel.model", QtInfoMsg)
Q_LOGGING_CATEGORY(logImaging, "tarnovel.imaging", QtInfoMsg)
Q_LOGGING_CATEGORY(logDecoder, "tarnovel.decoder", QtInfoMsg)
Q_LOGGING_CATEGORY(logEditor, "tarnovel.editor", QtInfoMsg)
Q_LOGGING_CATEGORY(logExport, "tarnovel.export", QtInfoMsg)
Q_LOGGING_CATEGORY(logCollage, "tarnovel.collage", QtInfoMsg)
Q_LOGGING_CATEGORY(logHandwriting, "tarnovel.handwriting", QtInfoMsg)
Q_LOGGING_CATEGORY(logApp, "tarnovel.app", QtInfoMsg)
Q_LOGGING_CATEGORY(logCli, "tarnovel.cli", QtInfoMsg)

namespace {

constexpr qsizetype mostLines = 200;

struct Log {
    std::mutex mutex;
    QStringList lines;
    bool printed = false;
    QtMessageHandler before = nullptr;
};

Log &theLog()
{
    static Log log;
    return log;
}

void take(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    Log &log = theLog();
    if (!context.category || std::strncmp(context.category, "tarnovel.", 9) != 0) {
        if (log.before) {
            log.before(type, context, message);
        }
        return;
    }
    const QString line = QTime::currentTime().toString(u"HH:mm:ss.zzz "_s) +
                         QString::fromLatin1(context.category) + u": "_s + message;
    const std::scoped_lock lock(log.mutex);
    log.lines.append(line);
    if (log.lines.size() > mostLines) {
        log.lines.removeFirst();
    }
    if (log.printed) {
        std::fputs((line.toStdString() + '\n').c_str(), stderr);
    }
}

} // namespace

void installLog()
{
    // Lines of debugging are off unless the rules turn them on: then somebody wants to read along.
    if (logApp().isDebugEnabled()) {
        printLog();
    }
    const QtMessageHandler before = qInstallMessageHandler(take);
    if (before != take) {
        theLog().before = before;
    }
}

void printLog()
{
    const std::scoped_lock lock(theLog().mutex);
    theLog().printed = true;
}

QStringList lastLogLines()
{
    const std::scoped_lock lock(theLog().mutex);
    return theLog().lines;
}

} // namespace tarnovel
