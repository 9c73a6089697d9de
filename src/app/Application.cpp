#include "app/Application.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTimer>
#include <QTranslator>

#include "app/Appearance.h"
#include "app/DesktopService.h"
#include "app/EditorContext.h"
#include "app/ProgramEnd.h"
#include "app/kit/Icons.h"
#include "app/kit/Theme.h"
#include "app/window/FileDrops.h"
#include "app/window/MainWindow.h"
#include "base/Log.h"
#include "base/ScratchFolder.h"
#include "editor/SingleInstance.h"
#include "export/ExportFileLifetime.h"
#include "export/ExportReviewPolicy.h"
#include "export/PhotoLibrary.h"
#include "model/LibraryPaths.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr Text unansweredText = {"Tarnovel 已在运行，但没有响应。",
                                 "Tarnovel is running already, but does not answer.",
                                 "Tarnovel est déjà ouvert, mais ne répond pas."};

/// The language preference as other threads read it.
class LanguagePreference {
public:
    explicit LanguagePreference(const Preferences &preferences) : m_preferences(preferences) { reload(); }

    void reload()
    {
        const QString stored = m_preferences.get(PreferenceKeys::language).toString();
        const std::lock_guard lock(m_mutex);
        m_name = stored;
    }
    QString name() const
    {
        const std::lock_guard lock(m_mutex);
        return m_name;
    }

private:
    const Preferences &m_preferences;
    mutable std::mutex m_mutex;
    QString m_name;
};

/// A folder among the temporary files that only this user can look into.
QString privateTemporaryFolder()
{
    QString path = QDir::tempPath() + u"/tarnovel-"_s + QString::number(getuid());
    const QByteArray name = QFile::encodeName(path);
    mkdir(name.constData(), S_IRWXU);
    struct stat status = {};
    const bool own = lstat(name.constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
                     status.st_uid == getuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    if (own) {
        return path;
    }
    // Somebody else has taken the name.
    return LibraryPaths::root() + u"/Temporary"_s;
}

QStringList pathsOf(const QStringList &arguments)
{
    QStringList paths;
    bool named = false;
    for (const QString &argument : arguments.mid(1)) {
        if (argument == u"--"_s && !named) {
            named = true;
        } else if (!named && (argument == u"-v"_s || argument == u"--verbose"_s)) {
            printLog();
        } else if (!named && argument == QLatin1StringView(DesktopService::argument)) {
            continue;
        } else if (named || !ExportReviewPolicy::isAutomation(argument)) {
            paths.append(FileDrops::pathOf(argument));
        }
    }
    return paths;
}

/// Qt's own texts, as of its file dialog, in the language that holds now.
class QtTexts {
public:
    QtTexts() { load(); }
    ~QtTexts() { QCoreApplication::removeTranslator(&m_translator); }
    QtTexts(const QtTexts &) = delete;
    QtTexts &operator=(const QtTexts &) = delete;

    void load()
    {
        static constexpr std::array files = {"qtbase_zh_CN", "", "qtbase_fr"};
        const QString file = QString::fromLatin1(files.at(static_cast<size_t>(currentLanguage())));
        QCoreApplication::removeTranslator(&m_translator);
        if (!file.isEmpty() && m_translator.load(file, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(&m_translator);
        }
    }

private:
    QTranslator m_translator;
};

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qEnvironmentVariableIsSet("DISPLAY") ||
           qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

int complain(const Text &text)
{
    std::fprintf(stderr, "tarnovel: %s\n", localized(text).toUtf8().constData());
    return 1;
}

/// Whether to ask the window that owns the library once more.
bool askUnanswered()
{
    complain(unansweredText);
    QMessageBox box(QMessageBox::Warning, u"Tarnovel"_s, localized(unansweredText));
    box.setInformativeText(
        localized({"请在另一个窗口中关闭 Tarnovel，或结束没有响应的程序，然后重试。照片仍在原处。",
                   "Close Tarnovel in its other window, or end the program that does not "
                   "answer, then try again. Your photos are where they were.",
                   "Fermez Tarnovel dans son autre fenêtre, ou arrêtez le programme qui ne "
                   "répond pas, puis réessayez. Vos photos n’ont pas bougé."}));
    const QAbstractButton *again =
        box.addButton(localized({"重试", "Try again", "Réessayer"}), QMessageBox::AcceptRole);
    box.addButton(localized({"关闭", "Close", "Fermer"}), QMessageBox::RejectRole);
    box.exec();
    return box.clickedButton() == again;
}

/// How long a start by the bus waits to be told what for.
constexpr int callMs = 10'000;

enum class Outcome { Owner, HandedOver, Refused };

/// Takes the library for this program, or hands what is asked to the program that has it.
Outcome takeLibrary(SingleInstance &instance, const OpenRequest &request)
{
    const QStringList photos = FileDrops::pictures(request.paths);
    while (!instance.acquire(photos, request.activationToken)) {
        if (instance.handedOver()) {
            return Outcome::HandedOver;
        }
        if (!askUnanswered()) {
            return Outcome::Refused;
        }
    }
    return Outcome::Owner;
}

void open(MainWindow &window, const OpenRequest &request)
{
    const QStringList photos = FileDrops::pictures(request.paths);
    window.openPhotos(photos, request.activationToken);
    if (photos.isEmpty() && !request.paths.isEmpty()) {
        window.state().say(
            localized({"里面没有可以打开的图片。", "There is no picture in it that can be opened.",
                       "Il ne s’y trouve aucune image lisible."}),
            Toast::Kind::Error);
    }
}

} // namespace

int runEditor(int argc, char **argv)
{
    // Before the platform takes it for a window that a second start never shows.
    installLog();
    OpenRequest request = {{}, DesktopService::activationToken()};
    Preferences preferences;
    LanguagePreference language(preferences);
    setLanguageSources(
        {[&language] { return language.name(); }, [] { return systemLanguagesFromEnvironment(); }});
    if (!hasDisplay()) {
        return complain({"没有可用的显示。命令行用法见 tarnovel --help。",
                         "There is no display. For the command line see tarnovel --help.",
                         "Aucun affichage. Pour la ligne de commande, voir tarnovel --help."});
    }
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"Tarnovel"_s);
    QApplication::setApplicationVersion(QStringLiteral(TARNOVEL_VERSION));
    QApplication::setDesktopFileName(u"io.github.tarnovel.Tarnovel"_s);
    QApplication::setFont(typeFont(Type::Body));
    QIcon icon;
    for (const int size : {16, 32, 48, 128, 256}) {
        icon.addPixmap(Icons::application(size));
    }
    QApplication::setWindowIcon(icon);

    const QString library = LibraryPaths::root();
    request.paths = pathsOf(QApplication::arguments());
    DesktopService service;
    if (DesktopService::startedByBus(argc, argv) && service.offer()) {
        const std::optional<OpenRequest> asked = service.take(callMs);
        if (!asked) {
            return 0;
        }
        request = *asked;
    }
    SingleInstance instance(library);
    for (Outcome outcome = takeLibrary(instance, request); outcome != Outcome::Owner;
         outcome = takeLibrary(instance, request)) {
        // What was asked meanwhile goes the same way; what comes later starts another program.
        service.withdraw();
        const std::optional<OpenRequest> next = service.take();
        if (!next || outcome == Outcome::Refused) {
            return outcome == Outcome::Refused ? 1 : 0;
        }
        request = *next;
    }
    // Folders of pasted pictures as older versions named them, which nobody holds.
    ScratchFolder::sweep(u"Tarnovel-"_s, 86'400);
    const QString temporary = privateTemporaryFolder();
    ExportFileLifetime::prepare(temporary);
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    ImagePipeline pipeline(library, temporary, PipelineUse::Editor,
                           caches + u"/tarnovel/thumbnails/x-large"_s);
    SessionWriter writer(library);
    SystemClock clock;
    EditorModel model({pipeline, writer, preferences, clock, library}, EditorModel::Load::StoredSession);
    SettingsEdits edits(model, clock);
    ImportFlow imports(model, pipeline);
    Thumbnails thumbnails(pipeline);
    EditorState state;
    QtTexts texts;
    Appearance appearance(preferences);
    PicturesFolder pictures;
    MainWindow window({{model, edits, imports, thumbnails, pipeline, preferences, clock, state},
                       appearance,
                       FileChooser::dialogs(preferences),
                       pictures,
                       [&language, &texts] {
                           language.reload();
                           texts.load();
                       }});
    QObject::connect(&instance, &SingleInstance::photosReceived, &window, &MainWindow::openPhotos);
    const ProgramEnd end([&window](bool certain) { window.saveNow(certain); });
    window.show();
    open(window, request);
    service.deliverTo([&window](const OpenRequest &later) { open(window, later); });
    if (DesktopService::startedByBus(argc, argv) || DesktopService::speaksForSession()) {
        service.offer();
    }
    QTimer::singleShot(0, &window, &MainWindow::offerDrafts);
    return QApplication::exec();
}

} // namespace tarnovel::app
