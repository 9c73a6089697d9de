#include "cli/Grammar.h"

#include <string>
#include <vector>

#include <QFile>

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

std::string inThisLanguage(const Text &variants)
{
    return localized(variants).toStdString();
}

/// An option with one value, a QString or one that may be absent; given twice, the last one counts.
template<typename Value>
void addOption(CLI::App &app, const char *name, Value &value, const char *valueName, const Text &what)
{
    app.add_option_function<std::string>(
           name, [&value](const std::string &typed) { value = fromArgument(typed); }, inThisLanguage(what))
        ->type_name(valueName)
        ->take_last();
}

CLI::Option *addValues(CLI::App &app, const char *name, QStringList &values, const Text &what)
{
    return app.add_option_function<std::vector<std::string>>(
        name,
        [&values](const std::vector<std::string> &typed) {
            values.clear();
            for (const std::string &argument : typed) {
                values.append(fromArgument(argument));
            }
        },
        inThisLanguage(what));
}

/// An option with one value that may be given any number of times.
void addRepeatable(CLI::App &app, const char *name, QStringList &values, const char *valueName,
                   const Text &what)
{
    addValues(app, name, values, what)->type_name(valueName)->allow_extra_args(false);
}

void addPhotos(CLI::App &command, QStringList &photos)
{
    addValues(command, "PHOTO", photos, {"照片文件", "Photo files", "Fichiers photo"})->type_name("");
}

void addJson(CLI::App &command, bool &json)
{
    command.add_flag("--json", json,
                     inThisLanguage({"每行输出一个 JSON 对象", "Print one JSON object a line",
                                     "Un objet JSON par ligne"}));
}

void addQuiet(CLI::App &command, bool &quiet)
{
    command.add_flag("-q,--quiet", quiet,
                     inThisLanguage({"不显示进度", "No progress on standard error", "Pas de progression"}));
}

template<typename Value>
void addFormat(CLI::App &command, Value &format, std::optional<QString> &maxMb, const Text &byDefault)
{
    addOption(command, "--format", format, "jpeg|png", byDefault);
    addOption(command, "--max-mb", maxMb, "N",
              {"JPEG 大小上限，单位 MB（1,000,000 字节）", "JPEG size limit in MB of 1,000,000 bytes",
               "Taille maximale du JPEG en Mo (1 000 000 octets)"});
}

} // namespace

QString fromArgument(const std::string &argument)
{
    return QFile::decodeName(QByteArray::fromStdString(argument));
}

Grammar::Grammar(Requests &requests) : m_requests(requests)
{
    m_app.name("tarnovel");
    m_app.description(inThisLanguage({"给一组照片加上统一的边框，并导出成品。",
                                      "Frames a set of photos in one look and exports them.",
                                      "Encadre une série de photos dans un même style et l’exporte."}));
    settle(m_app);
    m_app.set_version_flag("-V,--version", std::string("tarnovel ") + TARNOVEL_VERSION,
                           inThisLanguage({"显示版本", "Show the version", "Afficher la version"}));
    m_app.footer(
        inThisLanguage({"不带命令时打开编辑器并导入所列照片：tarnovel [PHOTO...]",
                        "Without a command the editor opens with the photos named: tarnovel [PHOTO...]",
                        "Sans commande, l’éditeur s’ouvre avec les photos nommées : tarnovel [PHOTO...]"}));
    m_app.require_subcommand(1);
    addExport();
    addWatch();
    addWorker();
    addInspect();
    addCollage();
    m_layouts = addList("layouts", {"列出 N 张照片的拼图布局", "List the collage layouts for N photos",
                                    "Lister les dispositions pour N photos"});
    m_layouts
        ->add_option_function<std::string>(
            "N", [this](const std::string &typed) { m_requests.list.photoCount = fromArgument(typed); },
            inThisLanguage({"照片张数", "Number of photos", "Nombre de photos"}))
        ->type_name("");
    m_templates = addList("templates", {"列出内置模板", "List the built-in templates", "Lister les modèles"});
    m_fields = addList("fields", {"列出 --set 能改的字段", "List the fields that --set knows",
                                  "Lister les champs que --set connaît"});
    m_stocks = addList("stocks", {"列出胶卷", "List the film stocks", "Lister les pellicules"});
}

QStringList &Grammar::photos()
{
    return wants(m_collage)   ? m_requests.collage.photos
           : wants(m_inspect) ? m_requests.inspection.photos
                              : m_requests.framing.selection.photos;
}

/// Headings and words of the help; CLI11 has its own in English only.
void Grammar::settle(CLI::App &app)
{
    const auto &formatter = app.get_formatter();
    formatter->label("Usage", inThisLanguage({"用法", "Usage", "Utilisation "}));
    formatter->label("OPTIONS", inThisLanguage({"选项", "OPTIONS", "OPTIONS"}));
    formatter->label("Positionals", inThisLanguage({"参数", "Arguments", "Arguments"}));
    formatter->label("SUBCOMMAND", inThisLanguage({"命令", "COMMAND", "COMMANDE"}));
    formatter->column_width(34);
    app.option_defaults()->group(inThisLanguage({"选项", "Options", "Options"}));
    app.set_help_flag("-h,--help", inThisLanguage({"显示说明", "Show this help", "Afficher cette aide"}));
    addOption(app, "--language", m_requests.language, "zh|en|fr",
              {"提示文字的语言", "Language of the messages", "Langue des messages"});
    app.add_flag("-v,--verbose", m_requests.verbose,
                 inThisLanguage(
                     {"在标准错误输出日志", "Log lines on standard error", "Journal sur l’erreur standard"}));
}

CLI::App &Grammar::addCommand(const char *name, const Text &description)
{
    CLI::App *command = m_app.add_subcommand(name, inThisLanguage(description));
    command->group(inThisLanguage({"命令", "Commands", "Commandes"}));
    settle(*command);
    return *command;
}

CLI::App *Grammar::addList(const char *name, const Text &description)
{
    CLI::App &command = addCommand(name, description);
    addJson(command, m_requests.list.json);
    return &command;
}

void Grammar::addInspect()
{
    m_inspect = &addCommand("inspect", {"读出照片的尺寸、相机信息与主色",
                                        "Show size, camera texts and palette of photos",
                                        "Afficher taille, infos et couleurs des photos"});
    addPhotos(*m_inspect, m_requests.inspection.photos);
    addJson(*m_inspect, m_requests.inspection.json);
}

void Grammar::addExport()
{
    m_export = &addCommand("export", {"加边框并导出到文件夹", "Frame photos into a folder",
                                      "Encadrer des photos dans un dossier"});
    CLI::App &command = *m_export;
    ExportRequest &request = m_requests.framing;
    addPhotos(command, request.selection.photos);
    command.add_flag(
        "--session", request.session,
        inThisLanguage({"导出上次编辑的照片，各用各的样式",
                        "Export the photos of the stored session, each in its own style",
                        "Exporter les photos de la session enregistrée, chacune avec son style"}));
    addOption(command, "-o,--output", request.folder, "DIR",
              {"目标文件夹，没有时会建立（必填）", "Destination folder, made when missing (required)",
               "Dossier de destination, créé au besoin (obligatoire)"});
    addStyleOptions(command);
    addResultOptions(command);
    addListOptions();
    addNameOptions(command);
    addRunOptions(command);
}

/// What there is to do, and how much of it at a time.
void Grammar::addListOptions()
{
    CLI::App &command = *m_export;
    ExportRequest &request = m_requests.framing;
    command.add_flag(
        "-r,--recursive", request.selection.recursive,
        inThisLanguage({"文件夹代表其中（含子文件夹）的图片", "A folder stands for the pictures below it",
                        "Un dossier désigne les images qu’il contient"}));
    addOption(command, "--files-from", request.selection.listFile, "FILE",
              {"从文件读取更多照片，每行一张，- 为标准输入",
               "More photos from a file, one a line; - is standard input",
               "D’autres photos depuis un fichier, une par ligne ; - : entrée standard"});
    command.add_flag("-0,--null", request.selection.nulEnded,
                     inThisLanguage({"列表以 NUL 字符分隔", "The names in that file are ended by NUL",
                                     "Les noms de ce fichier finissent par NUL"}));
    addOption(command, "--shard", request.shard, "K/N",
              {"只处理列表的第 K 份（共 N 份）", "Only the K-th of N parts of the list",
               "Seulement la K-ième de N parts de la liste"});
    command.add_flag(
        "--dry-run", request.dryRun,
        inThisLanguage({"只说明会写什么，不写任何文件", "Say what would be written, write nothing",
                        "Dire ce qui serait écrit, sans rien écrire"}));
}

void Grammar::addNameOptions(CLI::App &command)
{
    ExportRequest &request = m_requests.framing;
    addOption(command, "--name", request.name, "PATTERN",
              {"文件名（不含结尾），默认 {name}-framed；字段：{name} {n:3} {count} {date:yyyy-MM-dd} {time} "
               "{camera} {make} {model} {lens} {focal} {aperture} {shutter} {iso} {template} {size} {width} "
               "{height}（watch 没有 {n} 和 {count}）",
               "Output name without its ending, {name}-framed by default; fields: {name} {n:3} {count} "
               "{date:yyyy-MM-dd} {time} {camera} {make} {model} {lens} {focal} {aperture} {shutter} {iso} "
               "{template} {size} {width} {height} (watch: all but {n} and {count})",
               "Nom sans extension, {name}-framed par défaut ; champs : {name} {n:3} {count} "
               "{date:yyyy-MM-dd} {time} {camera} {make} {model} {lens} {focal} {aperture} {shutter} {iso} "
               "{template} {size} {width} {height} (watch : tous sauf {n} et {count})"});
    command.add_flag("--skip-existing", request.skipExisting,
                     inThisLanguage({"已有同名成品时跳过", "Leave a result alone whose name is there already",
                                     "Laisser un résultat dont le nom existe déjà"}));
}

void Grammar::addResultOptions(CLI::App &command)
{
    ExportRequest &request = m_requests.framing;
    addRepeatable(command, "--size", request.sizes, "SIZE",
                  {"1080（短边）、original 或长边像素，默认 4096（可重复）",
                   "1080 (short edge), original or a long edge in pixels; 4096 by default (repeatable)",
                   "1080 (petit côté), original ou grand côté en pixels ; 4096 par défaut (répétable)"});
    addFormat(command, request.format, request.maxMb, {"默认 jpeg", "jpeg by default", "jpeg par défaut"});
}

void Grammar::addRunOptions(CLI::App &command)
{
    ExportRequest &request = m_requests.framing;
    addOption(command, "-j,--jobs", request.jobs, "N",
              {"同时处理的照片数，默认按处理器和内存（watch 默认 1）",
               "Photos at once; by default as cores and memory allow (watch: 1)",
               "Photos à la fois ; par défaut selon les cœurs et la mémoire (watch : 1)"});
    addJson(command, request.json);
    addQuiet(command, request.quiet);
}

void Grammar::addWatch()
{
    m_watch = &addCommand("watch",
                          {"监视文件夹，处理其中已有和新来的照片", "Frame what is in a folder and what comes",
                           "Encadrer ce qui est dans un dossier et ce qui y arrive"});
    CLI::App &command = *m_watch;
    ExportRequest &request = m_requests.framing;
    command
        .add_option_function<std::string>(
            "IN", [&request](const std::string &typed) { request.selection.photos = {fromArgument(typed)}; },
            inThisLanguage({"要监视的文件夹", "The folder to watch", "Le dossier à surveiller"}))
        ->type_name("");
    addOption(command, "-o,--output", request.folder, "DIR",
              {"目标文件夹，没有时会建立（必填）", "Destination folder, made when missing (required)",
               "Dossier de destination, créé au besoin (obligatoire)"});
    command.add_flag("-r,--recursive", request.selection.recursive,
                     inThisLanguage({"也监视子文件夹", "Folders below it too", "Les sous-dossiers aussi"}));
    addStyleOptions(command);
    addResultOptions(command);
    addNameOptions(command);
    addRunOptions(command);
}

/// What the program starts to have photos made; nobody types it.
void Grammar::addWorker()
{
    m_worker = &addCommand("export-worker", {"", "", ""});
    m_worker->group("");
    ExportRequest &request = m_requests.framing;
    addOption(*m_worker, "--output", request.folder, "DIR", {"", "", ""});
    m_worker->add_flag("--session", request.session);
    addOption(*m_worker, "--items", request.itemsFile, "FILE", {"", "", ""});
    addStyleOptions(*m_worker);
    addResultOptions(*m_worker);
}

void Grammar::addStyleOptions(CLI::App &command)
{
    StyleRequest &request = m_requests.framing.style;
    addOption(
        command, "-t,--template", request.templateId, "ID",
        {"内置模板，默认 plain", "Built-in template; plain by default", "Modèle intégré, plain par défaut"});
    addOption(command, "--style", request.styleFile, "FILE",
              {"样式文件（JSON）", "A style as a JSON file", "Un style, fichier JSON"});
    addRepeatable(command, "--set", request.sets, "PATH=VALUE",
                  {"修改样式的一个字段，如 scale=0.7（可重复）",
                   "Change one field, as in scale=0.7 (repeatable)",
                   "Changer un champ, p. ex. scale=0.7 (répétable)"});
    addRepeatable(command, "--text", request.texts, "ID=TEXT",
                  {"写入并显示一个文字图层，如 title=早晨（可重复）",
                   "Write and show a text layer, as in title=Morning (repeatable)",
                   "Écrire et montrer un calque, p. ex. title=Matin (répétable)"});
    addOption(command, "--background", request.background, "FILE",
              {"背景图片", "Picture for the backdrop", "Image de fond"});
    addOption(command, "--logo", request.logo, "FILE", {"徽标图片", "Picture for the logo", "Image du logo"});
    addOption(command, "--signature", request.signature, "FILE",
              {"签名图片", "Picture of the signature", "Image de la signature"});
}

void Grammar::addCollage()
{
    m_collage = &addCommand("collage", {"把 2 到 9 张照片拼成一张", "Make one collage from 2 to 9 photos",
                                        "Faire un collage de 2 à 9 photos"});
    CLI::App &collage = *m_collage;
    CollageRequest &request = m_requests.collage;
    addPhotos(collage, request.photos);
    addOption(collage, "-o,--output", request.file, "FILE",
              {"目标文件（必填）", "Destination file (required)", "Fichier de destination (obligatoire)"});
    addOption(collage, "--layout", request.layout, "ID",
              {"布局，默认最适合照片的一种", "Layout; by default the one that suits the photos",
               "Disposition, par défaut celle qui convient aux photos"});
    addOption(collage, "--aspect", request.aspect, "NAME",
              {"preset、square、portrait45、portrait34 或 story",
               "preset, square, portrait45, portrait34 or story",
               "preset, square, portrait45, portrait34 ou story"});
    addSpacing();
    addCells();
    addFilmEdge();
    addOption(collage, "--size", request.size, "LONGEDGE",
              {"长边像素，720 到 4096，默认 2400", "Long edge in pixels, 720 to 4096; 2400 by default",
               "Grand côté en pixels, 720 à 4096, 2400 par défaut"});
    addFormat(
        collage, request.format, request.maxMb,
        {"默认按文件名的结尾", "by default what the file’s ending says", "par défaut selon la fin du nom"});
    addJson(collage, request.json);
    addQuiet(collage, request.quiet);
}

void Grammar::addSpacing()
{
    CLI::App &collage = *m_collage;
    CollageRequest &request = m_requests.collage;
    addOption(collage, "--gap", request.gap, "F",
              {"间距，短边的比例，默认 0.02", "Gap as a fraction of the shorter side; 0.02 by default",
               "Espace, fraction du petit côté, 0.02 par défaut"});
    addOption(collage, "--margin", request.margin, "F",
              {"外边距，默认 0.03", "Outer margin; 0.03 by default", "Marge, 0.03 par défaut"});
    addOption(collage, "--radius", request.radius, "F",
              {"圆角，默认 0", "Corner radius; 0 by default", "Rayon des coins, 0 par défaut"});
    addOption(
        collage, "--background", request.background, "#RRGGBB",
        {"背景色，默认白色", "Background colour; white by default", "Couleur de fond, blanc par défaut"});
    addRepeatable(collage, "--ratio", request.ratios, "PATH=R",
                  {"分隔线位置，0.15 到 0.85（可重复）", "Place of a divider, 0.15 to 0.85 (repeatable)",
                   "Place d’un séparateur, 0.15 à 0.85 (répétable)"});
}

void Grammar::addCells()
{
    CLI::App &collage = *m_collage;
    CollageRequest &request = m_requests.collage;
    addRepeatable(collage, "--frame", request.frames, "[SLOT=]NAME",
                  {"照片边框：none、white、inner、instant 或 film（可重复）",
                   "Frame of the cells: none, white, inner, instant or film (repeatable)",
                   "Cadre des cases : none, white, inner, instant ou film (répétable)"});
    addRepeatable(collage, "--pan", request.pans, "SLOT=X,Y",
                  {"移动照片，-1 到 1（可重复）", "Move a photo in its cell, -1 to 1 (repeatable)",
                   "Déplacer une photo, -1 à 1 (répétable)"});
    addRepeatable(collage, "--zoom", request.zooms, "SLOT=Z",
                  {"放大照片，1 到 4（可重复）", "Enlarge a photo in its cell, 1 to 4 (repeatable)",
                   "Agrandir une photo, 1 à 4 (répétable)"});
}

void Grammar::addFilmEdge()
{
    CLI::App &collage = *m_collage;
    CollageRequest &request = m_requests.collage;
    addOption(collage, "--stock", request.stock, "NAME",
              {"胶片长条的胶卷", "Film stock of a film strip", "Pellicule d’une bande film"});
    addOption(collage, "--edge-text", request.edgeText, "TEXT",
              {"胶片边缘文字", "Edge text of a film strip", "Texte du bord d’une bande film"});
    addOption(collage, "--start-number", request.startNumber, "N",
              {"首张编号，默认 1", "Number of the first frame; 1 by default",
               "Numéro de la première vue, 1 par défaut"});
    collage.add_flag("--no-numbers", request.noNumbers,
                     inThisLanguage({"不印编号", "Print no frame numbers", "Sans numéros de vue"}));
}

} // namespace tarnovel::cli
