#include "cli/Program.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tarnovel::test {

QList<Json> Outcome::lines() const
{
    QList<Json> result;
    for (const QByteArray &line : output.split('\n')) {
        if (!line.isEmpty()) {
            result.append(parseJson(line));
        }
    }
    return result;
}

Program::Program() : m_environment(QProcessEnvironment::systemEnvironment())
{
    for (const char *name :
         {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "LANGUAGE", "LC_MESSAGES", "LC_ALL"}) {
        m_environment.remove(QString::fromLatin1(name));
    }
    m_environment.insert(u"LANG"_s, u"en_GB.UTF-8"_s);
    m_environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    m_environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    m_environment.insert(u"TMPDIR"_s, path(u"temporary"_s));
    QDir().mkpath(path(u"temporary"_s));
}

QString Program::executable()
{
    return QStringLiteral(TARNOVEL_EXECUTABLE);
}

Outcome Program::run(const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_folder.path());
    process.start(executable(), arguments);
    // Generous, for sanitizers; the program itself has to answer far sooner.
    EXPECT_TRUE(process.waitForFinished(120'000)) << arguments.join(u' ').toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << arguments.join(u' ').toStdString();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QString Program::photo(const QString &name, int width, int height) const
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, qRgb(255 * x / width, 255 * y / height, 90));
        }
    }
    EXPECT_TRUE(image.save(path(name), name.endsWith(u".png"_s) ? "PNG" : "JPEG", 92));
    return name;
}

QString Program::file(const QString &name, const QByteArray &bytes) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return name;
}

QStringList Program::entries(const QString &folder) const
{
    return QDir(path(folder))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QList<pid_t> childrenOf(qint64 process)
{
    QProcess find;
    find.start(u"pgrep"_s, {u"-P"_s, QString::number(process)});
    find.waitForFinished();
    QList<pid_t> found;
    for (const QByteArray &line : find.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty()) {
            found.append(line.toInt());
        }
    }
    return found;
}

} // namespace tarnovel::test
