#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QStandardPaths>

#include "cli/Console.h"
#include "cli/ExportCommand.h"
#include "cli/Interruption.h"
#include "cli/ListCommands.h"
#include "language/AppLanguage.h"
#include "model/Preferences.h"

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace tarnovel {

namespace {

constexpr std::array<std::string_view, 4> commands = {"export", "inspect", "templates", "stocks"};

constexpr int wrongUsage = 2;

std::string text(const Text &variants)
{
    return localized(variants).toStdString();
}

QString fromArgument(const std::string &argument)
{
    return QFile::decodeName(QByteArray::fromStdString(argument));
}

QStringList fromArguments(const std::vector<std::string> &arguments)
{
    QStringList result;
    for (const std::string &argument : arguments) {
        result.append(fromArgument(argument));
    }
    return result;
}

/// What the arguments ask for; CLI11 fills it.
struct Arguments {
    std::vector<std::string> photos;
    std::string folder;
    std::string templateId;
    std::string style;
    std::vector<std::string> sets;
    std::vector<std::string> texts;
    std::string background;
    std::string logo;
    std::string signature;
    std::string size = "4096";
    std::string format = "jpeg";
    std::string maxMb;
    std::string language;
    bool session = false;
    bool json = false;
    bool quiet = false;
};

/// The grammar of the command line, described in the current language.
class Grammar {
public:
    explicit Grammar(Arguments &arguments) : m_arguments(arguments)
    {
        m_app.name("tarnovel");
        m_app.description(text({"给一组照片加上统一的边框，并导出成品。",
                                "Frames a set of photos in one look and exports them.",
                                "Encadre une série de photos dans un même style et l’exporte."}));
        settle(m_app);
        m_app.set_version_flag("--version", std::string("tarnovel ") + TARNOVEL_VERSION,
                               text({"显示版本", "Show the version", "Afficher la version"}));
        m_app.require_subcommand(1);
        addExport();
        addInspect();
        m_templates =
            addList("templates", {"列出内置模板", "List the built-in templates", "Lister les modèles"});
        m_stocks = addList("stocks", {"列出胶卷", "List the film stocks", "Lister les pellicules"});
    }

    CLI::App &app() { return m_app; }
    bool wants(const CLI::App *command) const { return command->parsed(); }
    const CLI::App *exporting() const { return m_export; }
    const CLI::App *inspecting() const { return m_inspect; }
    const CLI::App *templates() const { return m_templates; }
    const CLI::App *stocks() const { return m_stocks; }

private:
    /// Headings and words of the help; CLI11 has its own in English only.
    void settle(CLI::App &app)
    {
        const auto &formatter = app.get_formatter();
        formatter->label("Usage", text({"用法", "Usage", "Utilisation "}));
        formatter->label("OPTIONS", text({"选项", "OPTIONS", "OPTIONS"}));
        formatter->label("Positionals", text({"参数", "Arguments", "Arguments"}));
        formatter->label("SUBCOMMAND", text({"命令", "COMMAND", "COMMANDE"}));
        formatter->column_width(34);
        app.option_defaults()->group(text({"选项", "Options", "Options"}));
        app.set_help_flag("-h,--help", text({"显示说明", "Show this help", "Afficher cette aide"}));
        addOption(app, "--language", m_arguments.language, "zh|en|fr",
                  {"提示文字的语言", "Language of the messages", "Langue des messages"});
    }

    /// An option with one value; given twice, the last one counts.
    static void addOption(CLI::App &app, const char *name, std::string &value, const char *valueName,
                          const Text &what)
    {
        app.add_option(name, value, text(what))->type_name(valueName)->take_last();
    }

    /// An option with one value that may be given any number of times.
    static void addRepeatable(CLI::App &app, const char *name, std::vector<std::string> &values,
                              const char *valueName, const Text &what)
    {
        app.add_option(name, values, text(what))->type_name(valueName)->allow_extra_args(false);
    }

    CLI::App *addCommand(const char *name, const Text &description)
    {
        CLI::App *command = m_app.add_subcommand(name, text(description));
        command->group(text({"命令", "Commands", "Commandes"}));
        settle(*command);
        return command;
    }

    CLI::App *addList(const char *name, const Text &description)
    {
        CLI::App *command = addCommand(name, description);
        addJson(command);
        return command;
    }

    void addJson(CLI::App *command)
    {
        command->add_flag(
            "--json", m_arguments.json,
            text({"每行输出一个 JSON 对象", "Print one JSON object a line", "Un objet JSON par ligne"}));
    }

    void addPhotos(CLI::App *command)
    {
        command->add_option("PHOTO", m_arguments.photos, text({"照片文件", "Photo files", "Fichiers photo"}))
            ->type_name("");
    }

    void addInspect()
    {
        m_inspect = addCommand("inspect", {"读出照片的尺寸、相机信息与主色",
                                           "Show size, camera texts and palette of photos",
                                           "Afficher taille, infos et couleurs des photos"});
        addPhotos(m_inspect);
        addJson(m_inspect);
    }

    void addExport()
    {
        m_export = addCommand("export", {"加边框并导出到文件夹", "Frame photos into a folder",
                                         "Encadrer des photos dans un dossier"});
        addPhotos(m_export);
        m_export->add_flag("--session", m_arguments.session,
                           text({"导出上次编辑的照片，各用各的样式",
                                 "Export the photos of the stored session, each in its own style",
                                 "Exporter les photos de la session enregistrée, chacune avec son style"}));
        addOption(*m_export, "-o,--output", m_arguments.folder, "DIR",
                  {"目标文件夹，没有时会建立（必填）", "Destination folder, made when missing (required)",
                   "Dossier de destination, créé au besoin (obligatoire)"});
        addStyleOptions();
        addOutputOptions();
        addJson(m_export);
        m_export->add_flag("-q,--quiet", m_arguments.quiet,
                           text({"不显示进度", "No progress on standard error", "Pas de progression"}));
    }

    void addStyleOptions()
    {
        addOption(*m_export, "-t,--template", m_arguments.templateId, "ID",
                  {"内置模板，默认 plain", "Built-in template; plain by default",
                   "Modèle intégré, plain par défaut"});
        addOption(*m_export, "--style", m_arguments.style, "FILE",
                  {"样式文件（JSON）", "A style as a JSON file", "Un style, fichier JSON"});
        addRepeatable(*m_export, "--set", m_arguments.sets, "PATH=VALUE",
                      {"修改样式的一个字段，如 scale=0.7（可重复）",
                       "Change one field, as in scale=0.7 (repeatable)",
                       "Changer un champ, p. ex. scale=0.7 (répétable)"});
        addRepeatable(*m_export, "--text", m_arguments.texts, "ID=TEXT",
                      {"写入并显示一个文字图层，如 title=早晨（可重复）",
                       "Write and show a text layer, as in title=Morning (repeatable)",
                       "Écrire et montrer un calque, p. ex. title=Matin (répétable)"});
        addOption(*m_export, "--background", m_arguments.background, "FILE",
                  {"背景图片", "Picture for the backdrop", "Image de fond"});
        addOption(*m_export, "--logo", m_arguments.logo, "FILE",
                  {"徽标图片", "Picture for the logo", "Image du logo"});
        addOption(*m_export, "--signature", m_arguments.signature, "FILE",
                  {"签名图片", "Picture of the signature", "Image de la signature"});
    }

    void addOutputOptions()
    {
        addOption(*m_export, "--size", m_arguments.size, "SIZE",
                  {"1080（短边）、original 或长边像素，默认 4096",
                   "1080 (short edge), original or a long edge in pixels; 4096 by default",
                   "1080 (petit côté), original ou grand côté en pixels ; 4096 par défaut"});
        addOption(*m_export, "--format", m_arguments.format, "jpeg|png",
                  {"默认 jpeg", "jpeg by default", "jpeg par défaut"});
        addOption(*m_export, "--max-mb", m_arguments.maxMb, "N",
                  {"JPEG 大小上限，单位 MB（1,000,000 字节）", "JPEG size limit in MB of 1,000,000 bytes",
                   "Taille maximale du JPEG en Mo (1 000 000 octets)"});
    }

    Arguments &m_arguments;
    CLI::App m_app;
    CLI::App *m_export = nullptr;
    CLI::App *m_inspect = nullptr;
    CLI::App *m_templates = nullptr;
    CLI::App *m_stocks = nullptr;
};

std::optional<QString> given(const CLI::App *command, const char *option, const std::string &value)
{
    return command->count(option) > 0 ? std::optional(fromArgument(value)) : std::nullopt;
}

ExportRequest exportRequest(const Grammar &grammar, const Arguments &arguments)
{
    const CLI::App *command = grammar.exporting();
    if (arguments.folder.empty()) {
        throw UsageError{localized(
            {"缺少 -o 文件夹。", "The folder is missing: -o DIR.", "Il manque le dossier : -o DOSSIER."})};
    }
    ExportRequest request;
    request.photos = fromArguments(arguments.photos);
    request.folder = QDir::cleanPath(fromArgument(arguments.folder));
    request.session = arguments.session;
    request.templateId = given(command, "--template", arguments.templateId);
    request.styleFile = given(command, "--style", arguments.style);
    request.sets = fromArguments(arguments.sets);
    request.texts = fromArguments(arguments.texts);
    request.background = given(command, "--background", arguments.background);
    request.logo = given(command, "--logo", arguments.logo);
    request.signature = given(command, "--signature", arguments.signature);
    request.size = fromArgument(arguments.size);
    request.format = fromArgument(arguments.format);
    request.maxMb = given(command, "--max-mb", arguments.maxMb);
    request.json = arguments.json;
    request.quiet = arguments.quiet;
    return request;
}

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
        preference = Preferences().value(u"language"_s).toString();
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

int dispatch(const Grammar &grammar, const Arguments &arguments, const Interruption &interruption)
{
    if (grammar.wants(grammar.templates())) {
        return runTemplates(arguments.json);
    }
    if (grammar.wants(grammar.stocks())) {
        return runStocks(arguments.json);
    }
    if (grammar.wants(grammar.inspecting())) {
        if (arguments.photos.empty()) {
            throw UsageError{localized({"没有指定照片。", "No photo is named.", "Aucune photo indiquée."})};
        }
        return runInspect(fromArguments(arguments.photos), arguments.json, interruption);
    }
    return runExport(exportRequest(grammar, arguments), interruption);
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
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg) {
            Console::complain(message);
        }
    });
}

} // namespace

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
    Arguments arguments;
    Grammar grammar(arguments);
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
    if (end != argv + argc) {
        arguments.photos.insert(arguments.photos.end(), end + 1, argv + argc);
    }
    const Interruption interruption;
    const QGuiApplication application(argc, argv);
    removeRuntimeFolder();
    try {
        const int status = dispatch(grammar, arguments, interruption);
        return interruption.exitStatus() != 0 ? interruption.exitStatus() : status;
    } catch (const UsageError &error) {
        return wrong(error.message);
    }
}

} // namespace tarnovel
