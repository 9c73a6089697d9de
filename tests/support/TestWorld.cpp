#include "support/TestWorld.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <QString>
#include <gtest/gtest.h>

namespace tarnovel::test {

void settle()
{
    // Removed when the program ends, so that a test run leaves nothing behind.
    static const struct Folder {
        std::filesystem::path path;
        Folder()
        {
            std::string name = (std::filesystem::temp_directory_path() / "tarnovel tést XXXXXX").string();
            path = mkdtemp(name.data());
        }
        ~Folder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    } folder;
    const std::string root = folder.path.string();
    setenv("TMPDIR", root.c_str(), 1);
    setenv("HOME", root.c_str(), 1);
    setenv("XDG_DATA_HOME", (root + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (root + "/config").c_str(), 1);
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
}

void failOnQtWarnings()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        // The offscreen platform says so of every window.
        const bool usual = message == u"This plugin does not support propagateSizeHints()";
        if (type != QtDebugMsg && type != QtInfoMsg && !usual) {
            ADD_FAILURE() << "Qt says: " << message.toStdString();
        }
    });
}

} // namespace tarnovel::test
