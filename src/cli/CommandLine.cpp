#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QGuiApplication>
#include <QStandardPaths>

#include "base/Log.h"
#include "cli/CollageCommand.h"
#include "cli/Console.h"
#include "cli/ExportCommand.h"
#include "cli/ExportWorker.h"
#include "cli/Grammar.h"
#include "cli/Interruption.h"
#include "cli/ListCommands.h"
#include "cli/OutputOptions.h"
#include "cli/StyleFields.h"
#include "cli/WatchCommand.h"
#include "export/ExportReviewPolicy.h"
#include "language/AppLanguage.h"
#include "model/Preferences.h"

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace tarnovel::cli {

namespace {

constexpr std::array<std::string_view, 9> commands = {
    "export", "export-worker", "watch", "collage", "layouts", "inspect", "templates", "stocks", "fields"};

constexpr int wrongUsage = 2;

/// What CLI11 found wrong, in the user's language; it names the culprit in its own English only.
QString complaint(const CLI::ParseError &error, const CLI::App &app)
{
    if (dynamic_cast<const CLI::ExtrasError *>(&error)) {
        const std::vector<std::string> extras = app.remaining(true);
        return localized({"未知的参数：", "Unknown argument: ", "Argument inconnu : "}) +
               (extras.empty() ? QString() : fromArgument(extras.front()));
    }
    if (dynamic_cast<const CLI::RequiredError *>(&error)) {
        return localized({"没有指定命令。", "No command is given.", "Aucune commande indiquée."});
    }
    const QString option = QString::fromUtf8(error.what()).section(u':', 0, 0);
    if (dynamic_cast<const CLI::ArgumentMismatch *>(&error)) {
        return localized({"缺少值：", "A value is missing: ", "Il manque une valeur : "}) + option;
    }
    return localized({"用法有误：", "Wrong usage of ", "Mauvais usage de "}) + option;
}

int wrong(const QString &message)
{
    const bool ended = message.endsWith(u'.') || message.endsWith(u'。');
    Console::complain(message + (ended ? QString() : localized({"。", ".", "."})) + u' ' +
                      localized({"参见 tarnovel --help", "See tarnovel --help", "Voir tarnovel --help"}));
    return wrongUsage;
}

/// The value of --language wherever it stands: it is needed before the rest can be understood.
std::optional<QString> languageArgument(int argc, char **argv)
{
    constexpr std::string_view option = "--language";
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--") {
            break;
        }
        if (argument == option && i + 1 < argc) {
            return QString::fromUtf8(argv[i + 1]);
        }
        if (argument.starts_with(option) && argument.substr(option.size()).starts_with('=')) {
            return QString::fromUtf8(argument.substr(option.size() + 1).data());
        }
    }
    return std::nullopt;
}

bool hasArgument(int argc, char **argv, std::string_view wanted)
{
    return std::any_of(argv + 1, argv + argc, [wanted](const char *argument) { return argument == wanted; });
}

/// Chooses the language of everything that follows. False for a code that names none.
bool chooseLanguage(int argc, char **argv)
{
    const QStringList system = systemLanguagesFromEnvironment();
    QString preference;
    if (hasArgument(argc, argv, "--session")) {
        preference = Preferences().get(PreferenceKeys::language).toString();
    }
    const std::optional<QString> code = languageArgument(argc, argv);
    const auto language = code ? languageFromCode(*code) : std::nullopt;
    if (language) {
        preference = languageName(language);
    }
    setLanguageSources(
        {[preference] { return QString(preference); }, [system] { return QStringList(system); }});
    return !code || language;
}

void require(bool given, const Text &otherwise)
{
    if (!given) {
        throw UsageError{localized(otherwise)};
    }
}

int dispatch(const Grammar &grammar, Requests &requests, const Interruption &interruption)
{
    if (grammar.wants(grammar.templates())) {
        return runTemplates(requests.list.json);
    }
    if (grammar.wants(grammar.stocks())) {
        return runStocks(requests.list.json);
    }
    if (grammar.wants(grammar.fields())) {
        return runFields(requests.list.json);
    }
    if (grammar.wants(grammar.layouts())) {
        return runLayouts(requests.list.photoCount, requests.list.json);
    }
    if (grammar.wants(grammar.collage())) {
        return runCollage(requests.collage, interruption);
    }
    if (grammar.wants(grammar.inspecting())) {
        require(!requests.inspection.photos.isEmpty(),
                {"没有指定照片。", "No photo is named.", "Aucune photo indiquée."});
        return runInspect(requests.inspection.photos, requests.inspection.json, interruption);
    }
    require(!requests.framing.folder.isEmpty(),
            {"缺少 -o 文件夹。", "The folder is missing: -o DIR.", "Il manque le dossier : -o DOSSIER."});
    requests.framing.folder = QDir::cleanPath(requests.framing.folder);
    return grammar.wants(grammar.watching()) ? runWatch(requests.framing, interruption)
                                             : runExport(requests.framing, interruption);
}

/// A program that is started with a closed standard stream would write its messages into the next file that
/// it opens.
void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", O_RDWR);
        }
    }
}

/// A worker ends by the signals that end any process: the program that has started it looks after the rest.
int serveAsWorker(int argc, char **argv, const ExportRequest &request)
{
    Interruption::ignoreBrokenWrites();
    const QGuiApplication application(argc, argv);
    try {
        return runExportWorker(request);
    } catch (const Refusal &refusal) {
        qCWarning(logCli) << refusal.what << refusal.message;
    } catch (const UsageError &error) {
        qCWarning(logCli) << error.message;
    } catch (const std::exception &error) {
        qCWarning(logCli) << error.what();
    }
    return 1;
}

/// Without a session's runtime folder Qt makes one among the temporary files; a command leaves nothing there.
/// A folder that is in use is not empty, and stays.
void removeRuntimeFolder()
{
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        QDir().rmdir(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
    }
}

/// Qt without a display, and silent: its remarks on the platform are nothing the user of a command asked for.
void prepareQt()
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &message) {
        // A missing font changes the result, and the user can help it.
        const bool isFont = context.category && context.category == "fonts"sv;
        if (type == QtFatalMsg || (isFont && type == QtWarningMsg)) {
            Console::complain(message);
        }
    });
    installLog();
}

} // namespace

bool isCommand(int argc, char **argv)
{
    if (argc < 2 || argv[1] == "--"sv) {
        return false;
    }
    const std::string_view first = argv[1];
    const bool verbose = first == "-v" || first == "--verbose";
    if (verbose || (first.starts_with('-') && ExportReviewPolicy::isAutomation(fromArgument(argv[1])))) {
        return isCommand(argc - 1, argv + 1); // said of the editor too
    }
    if (first.starts_with('-') || std::ranges::find(commands, first) != commands.end()) {
        return true;
    }
    return first.find_first_of("/.") == std::string_view::npos && access(argv[1], F_OK) != 0;
}

int runCommandLine(int argc, char **argv)
{
    occupyStandardStreams();
    const bool knownLanguage = chooseLanguage(argc, argv);
    prepareQt();
    if (!knownLanguage) {
        return wrong(localized({"--language 应为 zh、en 或 fr。", "--language takes zh, en or fr.",
                                "--language prend zh, en ou fr."}));
    }
    if (argc > 1 && argv[1][0] != '-' &&
        std::ranges::find(commands, std::string_view(argv[1])) == commands.end()) {
        return wrong(localized({"没有这个命令：", "There is no command ", "Commande inconnue : "}) +
                     fromArgument(argv[1]));
    }
    Requests requests;
    Grammar grammar(requests);
    // CLI11 gives what follows "--" to the command only while it has no photo yet; all of it is photos.
    char **const end =
        std::find_if(argv, argv + argc, [](const char *argument) { return argument == "--"sv; });
    try {
        grammar.app().parse(static_cast<int>(end - argv), argv);
    } catch (const CLI::Success &asked) {
        return grammar.app().exit(asked);
    } catch (const CLI::ParseError &error) {
        return wrong(complaint(error, grammar.app()));
    }
    for (char **photo = std::min(end + 1, argv + argc); photo != argv + argc; ++photo) {
        grammar.photos().append(fromArgument(*photo));
    }
    if (requests.verbose) {
        printLog();
    }
    requests.framing.verbose = requests.verbose;
    if (grammar.wants(grammar.worker())) {
        return serveAsWorker(argc, argv, requests.framing);
    }
    const Interruption interruption;
    const QGuiApplication application(argc, argv);
    removeRuntimeFolder();
    try {
        const int status = dispatch(grammar, requests, interruption);
        const bool endsByInterruption = grammar.wants(grammar.watching());
        return interruption.exitStatus() != 0 && !endsByInterruption ? interruption.exitStatus() : status;
    } catch (const UsageError &error) {
        return wrong(error.message);
    }
}

} // namespace tarnovel::cli
