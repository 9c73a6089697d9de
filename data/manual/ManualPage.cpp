#include "ManualPage.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "language/AppLanguage.h"

namespace tarnovel::manual {

namespace {

std::string in(const Text &variants)
{
    return localized(variants).toStdString();
}

/// Chinese has no spaces: a line may break behind each of its characters, which take three bytes from this
/// first one on.
constexpr unsigned char firstOfIdeographs = 0xe3;
constexpr unsigned char lastOfThreeBytes = 0xef;

/// Text as troff prints it: a hyphen that can be copied, no escapes, no request at a line's start.
std::string plain(const std::string &text)
{
    std::string escaped;
    int left = 0;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte >= firstOfIdeographs && byte <= lastOfThreeBytes) {
            left = 3;
        }
        if (left > 0) {
            escaped += letter;
            escaped += --left == 0 ? "\\:" : "";
            continue;
        }
        switch (letter) {
        case '\\':
            escaped += "\\e";
            break;
        case '-':
            escaped += "\\-";
            break;
        case '\'':
            escaped += "\\(aq";
            break;
        case '"':
            escaped += "\\(dq";
            break;
        case '^':
            escaped += "\\(ha";
            break;
        case '~':
            escaped += "\\(ti";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

std::string bold(const std::string &text)
{
    return "\\fB" + plain(text) + "\\fR";
}

std::string placeholder(const std::string &text)
{
    return "\\fI" + plain(text) + "\\fR";
}

void title(std::ostringstream &page, std::string name)
{
    std::ranges::transform(name, name.begin(), [](unsigned char letter) { return std::toupper(letter); });
    page << ".\\\" Made from the program's own table of options.\n"
         << ".TH " << plain(name) << " 1 \"\" \"tarnovel " << TARNOVEL_VERSION
         << "\" \"Tarnovel\"\n"
         // Lines without spaces cannot be spread to the margin.
         << (currentLanguage() == AppLanguage::chinese ? ".ad l\n" : "");
}

void section(std::ostringstream &page, const Text &heading)
{
    page << ".SH " << in(heading) << '\n';
}

void item(std::ostringstream &page, const std::string &tag, const std::string &text)
{
    page << ".TP\n" << tag << '\n' << text << '\n';
}

void options(std::ostringstream &page, const CommandRow &command)
{
    section(page, {"选项", "OPTIONS", "OPTIONS"});
    for (const OptionRow &option : command.options) {
        std::string tag;
        for (const std::string &name : option.names) {
            tag += (tag.empty() ? "" : ", ") + bold(name);
        }
        if (!option.value.empty()) {
            tag += " " + placeholder(option.value);
        }
        std::string text = plain(option.description);
        const std::vector<std::string> values = knownValues(option);
        if (!values.empty() && option.value.find('|') == std::string::npos) {
            text += "\n.RS\n.PP";
            for (const std::string &value : values) {
                text += "\n" + bold(value) + (&value == &values.back() ? "" : ",");
            }
            text += "\n.RE";
        }
        item(page, tag, text);
    }
}

std::string synopsis(const CommandRow &command)
{
    std::string line = bold("tarnovel " + command.name);
    line += " [" + placeholder(in({"选项", "OPTIONS", "OPTIONS"})) + "]";
    if (!command.operands.empty()) {
        line += " " + placeholder(command.operands);
    }
    for (const OptionRow &option : command.options) {
        if (std::ranges::find(option.names, "--output") != option.names.end()) {
            line += " " + bold("-o") + " " + placeholder(option.value);
        }
    }
    return line;
}

void exitStatus(std::ostringstream &page)
{
    section(page, {"退出状态", "EXIT STATUS", "CODE DE RETOUR"});
    item(page, bold("0"), in({"全部完成。", "All is done.", "Tout est fait."}));
    item(page, bold("1"),
         in({"有照片失败，其余已完成。", "Something failed; the rest is done.",
             "Un élément a échoué ; le reste est fait."}));
    item(page, bold("2"),
         in({"用法有误，没有写入任何文件。", "Wrong usage; nothing was written.",
             "Mauvais usage ; rien n’a été écrit."}));
    item(page, bold("130"),
         in({"被 Ctrl\\-C 中断；已完成的文件保留，没有临时文件。",
             "Ended by Ctrl\\-C; finished files stay, temporary ones do not.",
             "Interrompu par Ctrl\\-C ; les fichiers finis restent, aucun temporaire."}));
}

struct Example {
    const char *command;
    Text what;
};

std::vector<Example> examples(const std::string &command)
{
    if (command == "export") {
        return {{"tarnovel export -t gear -o framed *.jpg",
                 {"用模板 gear 给所有照片加边框，写入 framed",
                  "Frame all photos with the template gear, into framed",
                  "Encadrer toutes les photos avec le modèle gear, dans framed"}},
                {"tarnovel export --set preset=square --set background=blur -o out photo.heic",
                 {"方形画布，模糊背景", "A square canvas over a blurred backdrop",
                  "Un format carré sur un fond flou"}},
                {"tarnovel export -r --skip-existing --name '{date:yyyy-MM-dd} {name}' -o framed archive",
                 {"整个文件夹，按日期命名，从上次停下的地方继续",
                  "A whole folder, named by date, going on where the last run stopped",
                  "Tout un dossier, nommé par date, en reprenant où il s’était arrêté"}}};
    }
    if (command == "collage") {
        return {{"tarnovel collage --layout filmstrip -o strip.jpg a.jpg b.jpg c.jpg",
                 {"三张照片的胶片长条", "A film strip of three photos", "Une bande de trois photos"}}};
    }
    if (command == "inspect") {
        return {{"tarnovel inspect --json *.jpg",
                 {"每张照片一行 JSON", "One line of JSON for each photo", "Une ligne de JSON par photo"}}};
    }
    if (command == "layouts") {
        return {{"tarnovel layouts 4",
                 {"四张照片的布局", "The layouts for four photos", "Les dispositions pour quatre photos"}}};
    }
    return {};
}

void exampleSection(std::ostringstream &page, const std::string &command)
{
    const std::vector<Example> all = examples(command);
    if (all.empty()) {
        return;
    }
    section(page, {"示例", "EXAMPLES", "EXEMPLES"});
    for (const Example &example : all) {
        item(page, bold(example.command), plain(in(example.what)));
    }
}

void seeAlso(std::ostringstream &page, const std::vector<std::string> &pages)
{
    section(page, {"参见", "SEE ALSO", "VOIR AUSSI"});
    for (const std::string &other : pages) {
        page << ".BR " << plain(other) << " (1)" << (&other == &pages.back() ? "\n" : ",\n");
    }
}

} // namespace

std::string programPage(const CommandTable &table)
{
    std::ostringstream page;
    title(page, "tarnovel");
    section(page, {"名称", "NAME", "NOM"});
    page << "tarnovel \\- "
         << plain(in({"给一组照片加上统一的边框", "give a set of photos one consistent frame",
                      "donner à une série de photos un cadre cohérent"}))
         << '\n';
    section(page, {"概要", "SYNOPSIS", "SYNOPSIS"});
    page << bold("tarnovel") << " [" << placeholder("PHOTO...") << "]\n";
    for (const CommandRow &command : table.commands) {
        page << ".br\n" << synopsis(command) << '\n';
    }
    section(page, {"说明", "DESCRIPTION", "DESCRIPTION"});
    page << plain(in(
                {"不带命令时打开编辑器并导入所列照片；带命令时不打开窗口，也不需要显示器。"
                 "照片可以是 JPEG、PNG、HEIC、AVIF、WebP、TIFF，或相机 "
                 "RAW（取其中相机自己的画面）；一切都在本机完成。",
                 "Without a command it opens the editor with the photos named. With one it works without a "
                 "window or a display. Photos may be JPEG, PNG, HEIC, AVIF, WebP or TIFF, or raw files, of "
                 "which the camera's own picture is taken; everything happens on this machine.",
                 "Sans commande, le programme ouvre l’éditeur avec les photos nommées. Avec une commande, il "
                 "travaille sans fenêtre ni écran. Les photos peuvent être des JPEG, PNG, HEIC, AVIF, WebP, "
                 "TIFF, ou des fichiers RAW, dont l’image de l’appareil est prise ; tout se passe sur cette "
                 "machine."}))
         << '\n';
    section(page, {"命令", "COMMANDS", "COMMANDES"});
    std::vector<std::string> others;
    for (const CommandRow &command : table.commands) {
        item(page, bold(command.name), plain(command.description));
        others.push_back("tarnovel-" + command.name);
    }
    options(page, table.program);
    exitStatus(page);
    section(page, {"文件", "FILES", "FICHIERS"});
    item(page, "\\fI$XDG_DATA_HOME/TarnovelMac\\fR",
         plain(in({"编辑器的会话、照片副本与签名；命令从不写入。",
                   "The editor’s session, copies of photos and signatures; no command writes there.",
                   "La session de l’éditeur, copies de photos et signatures ; aucune commande n’y écrit."})));
    section(page, {"环境变量", "ENVIRONMENT", "ENVIRONNEMENT"});
    item(page, bold("LANGUAGE") + ", " + bold("LC_ALL") + ", " + bold("LC_MESSAGES") + ", " + bold("LANG"),
         plain(in({"提示文字的语言：中文、英文或法文。",
                   "The language of messages: Chinese, English or French.",
                   "La langue des messages : chinois, anglais ou français."})));
    item(page, bold("NO_COLOR"),
         plain(in({"设置后不用颜色。", "When set, no colour is used.", "Si définie, aucune couleur."})));
    seeAlso(page, others);
    return page.str();
}

std::string commandPage(const CommandRow &command)
{
    std::ostringstream page;
    title(page, "tarnovel-" + command.name);
    section(page, {"名称", "NAME", "NOM"});
    page << plain("tarnovel-" + command.name) << " \\- " << plain(command.description) << '\n';
    section(page, {"概要", "SYNOPSIS", "SYNOPSIS"});
    page << synopsis(command) << '\n';
    options(page, command);
    exitStatus(page);
    exampleSection(page, command.name);
    seeAlso(page, {"tarnovel"});
    return page.str();
}

} // namespace tarnovel::manual
