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
    const char *platform = std::getenv("TARNOVEL_TEST_PLATFORM");
    setenv("QT_QPA_PLATFORM", platform ? platform : "offscreen", 1);
    // Without a runtime folder Qt says so, which would count as a warning.
    setenv("XDG_RUNTIME_DIR", (root + "/runtime").c_str(), 1);
    std::filesystem::create_directory(root + "/runtime");
    std::filesystem::permissions(root + "/runtime", std::filesystem::perms::owner_all);
    std::setlocale(LC_ALL, "C.UTF-8");
}

void failOnQtWarnings()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &message) {
        // The program's own log tells of causes that tests bring about on purpose.
        const bool ours = QLatin1StringView(context.category).startsWith(QLatin1StringView("tarnovel."));
        // The offscreen platform has no window manager to tell of a window's smallest size.
        const bool noWindowManager = message.contains(QLatin1StringView("propagateSizeHints"));
        if (type != QtDebugMsg && type != QtInfoMsg && !noWindowManager && !ours) {
            ADD_FAILURE() << "Qt says: " << message.toStdString();
        }
    });
}

} // namespace tarnovel::test
