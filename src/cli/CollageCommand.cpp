#include "cli/CollageCommand.h"

#include <algorithm>

#include <QFile>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/FileError.h"
#include "base/Json.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/OutputOptions.h"
#include "collage/CollageOutput.h"
#include "language/AppLanguage.h"
#include "pipeline/ImagePipeline.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

constexpr qsizetype fewestPhotos = 2;
constexpr qsizetype mostPhotos = 9;

/// "OPTION: VALUE" for a value that the option does not take.
UsageError wrongValue(const QString &option, const QString &value)
{
    return {localized({"值不对：", "Not a value of ", "Valeur non valide pour "}) + option + u' ' + value};
}

double fraction(const QString &option, const QString &value)
{
    bool number = false;
    const double result = value.toDouble(&number);
    if (!number || !(result >= 0 && result <= 0.5)) {
        throw wrongValue(option, value);
    }
    return result;
}

/// The parts of SLOT=VALUE, with the slot checked against the number of photos.
struct SlotValue {
    int slot;
    QString value;

    static SlotValue from(const QString &option, const QString &text, qsizetype count)
    {
        const qsizetype equals = text.indexOf(u'=');
        bool number = false;
        const int slot = text.left(std::max<qsizetype>(equals, 0)).toInt(&number);
        if (!number || slot < 0 || slot >= count) {
            throw wrongValue(option, text);
        }
        return {slot, text.mid(equals + 1)};
    }
};

void setFrames(CollageDesign &design, const QStringList &frames)
{
    for (const QString &text : frames) {
        if (const auto every = cellFrameFromName(text)) {
            for (CollageCell &cell : design.cells) {
                cell.frame = *every;
            }
            continue;
        }
        const SlotValue parted = SlotValue::from(u"--frame"_s, text, design.cells.size());
        const auto frame = cellFrameFromName(parted.value);
        if (!frame) {
            throw wrongValue(u"--frame"_s, text);
        }
        design.cells[parted.slot].frame = *frame;
    }
}

void setViews(CollageDesign &design, const CollageRequest &request)
{
    for (const QString &text : request.pans) {
        const SlotValue parted = SlotValue::from(u"--pan"_s, text, design.cells.size());
        bool isX = false;
        bool isY = false;
        const double x = parted.value.section(u',', 0, 0).toDouble(&isX);
        const double y = parted.value.section(u',', 1).toDouble(&isY);
        if (!isX || !isY || !(std::abs(x) <= 1) || !(std::abs(y) <= 1)) {
            throw wrongValue(u"--pan"_s, text);
        }
        design.cells[parted.slot].offset = {x, y};
    }
    for (const QString &text : request.zooms) {
        const SlotValue parted = SlotValue::from(u"--zoom"_s, text, design.cells.size());
        bool number = false;
        const double zoom = parted.value.toDouble(&number);
        if (!number || !(zoom >= 1 && zoom <= 4)) {
            throw wrongValue(u"--zoom"_s, text);
        }
        design.cells[parted.slot].zoom = zoom;
    }
}

void setRatios(CollageDesign &design, const QStringList &ratios)
{
    for (const QString &text : ratios) {
        const auto path = CollageDivider::pathFromId(text.section(u'=', 0, 0));
        bool number = false;
        const double ratio = text.section(u'=', 1).toDouble(&number);
        const CollageNode *node = path ? design.node.node(*path) : nullptr;
        if (!text.contains(u'=') || !node || !node->axis || !number || !(ratio >= 0.15 && ratio <= 0.85)) {
            throw wrongValue(u"--ratio"_s, text);
        }
        design.node.setRatio(*path, ratio);
    }
}

QColor hexColor(const QString &text)
{
    const QColor color(text);
    if (text.size() != 7 || !text.startsWith(u'#') || !color.isValid()) {
        throw wrongValue(u"--background"_s, text);
    }
    return color;
}

CollagePreset presetFrom(const CollageRequest &request, const QList<QSizeF> &sizes)
{
    if (!request.layout) {
        return CollagePreset::best(sizes);
    }
    const QList<CollagePreset> presets = CollagePreset::all(static_cast<int>(sizes.size()));
    const auto found = std::ranges::find(presets, *request.layout, &CollagePreset::id);
    if (found == presets.end()) {
        throw UsageError{
            localized({"没有这个布局：", "There is no layout ", "Disposition inconnue\u202f: "}) +
            *request.layout};
    }
    return *found;
}

/// The design that the options describe for photos of these sizes.
CollageDesign designFrom(const CollageRequest &request, const QList<QSizeF> &sizes)
{
    CollageDesign design = CollageDesign::of(presetFrom(request, sizes), QList<QUuid>(sizes.size()));
    if (request.aspect) {
        const auto aspect = collageAspectFromName(*request.aspect);
        if (!aspect) {
            throw wrongValue(u"--aspect"_s, *request.aspect);
        }
        design.aspect = *aspect;
    }
    for (const auto &[option, given, place] : {std::tuple(u"--gap"_s, &request.gap, &design.gap),
                                               {u"--margin"_s, &request.margin, &design.margin},
                                               {u"--radius"_s, &request.radius, &design.radius}}) {
        if (*given) {
            *place = fraction(option, **given);
        }
    }
    if (request.background) {
        design.background = hexColor(*request.background);
    }
    setFrames(design, request.frames);
    setViews(design, request);
    setRatios(design, request.ratios);
    design.filmEdge.stock = request.stock.value_or(design.filmEdge.stock);
    design.filmEdge.topText = request.edgeText.value_or(QString());
    design.filmEdge.showsNumbers = !request.noNumbers;
    if (request.startNumber) {
        bool number = false;
        design.filmEdge.startNumber = request.startNumber->toInt(&number);
        if (!number || design.filmEdge.startNumber < 0 || design.filmEdge.startNumber > 999'999) {
            throw wrongValue(u"--start-number"_s, *request.startNumber);
        }
    }
    return design;
}

/// What a file's ending stands for; none for any other than those of the two formats.
std::optional<QString> formatOf(const QString &file)
{
    const QString ending = QFileInfo(file).suffix().toLower();
    if (ending == u"png"_s) {
        return u"png"_s;
    }
    return ending == u"jpg"_s || ending == u"jpeg"_s ? std::optional(u"jpeg"_s) : std::nullopt;
}

void checkFile(const QString &file)
{
    if (file.isEmpty()) {
        throw UsageError{localized(
            {"缺少 -o 文件。", "The file is missing: -o FILE.", "Il manque le fichier\u202f: -o FICHIER."})};
    }
    if (file.endsWith(u'/') || QFileInfo(file).isDir()) {
        throw UsageError{localized({"-o 应为文件，而不是文件夹：", "-o takes a file, not a folder: ",
                                    "-o prend un fichier, pas un dossier\u202f: "}) +
                         file};
    }
    if (!formatOf(file)) {
        throw UsageError{localized({"-o 的文件名应以 .jpg、.jpeg 或 .png 结尾：",
                                    "-o takes a name that ends in .jpg, .jpeg or .png: ",
                                    "-o prend un nom en .jpg, .jpeg ou .png\u202f: "}) +
                         file};
    }
}

ExportOptions optionsFrom(const CollageRequest &request)
{
    const QString ending = *formatOf(request.file);
    ExportOptions options;
    setFormat(options, request.format.value_or(ending), request.maxMb);
    if (request.format.value_or(ending) != ending) {
        throw UsageError{
            localized({"--format 与 -o 的文件名不符：", "--format contradicts the name given to -o: ",
                       "--format contredit le nom donné à -o\u202f: "}) +
            request.file};
    }
    return options;
}

int longEdgeFrom(const CollageRequest &request)
{
    constexpr int shortest = 720;
    constexpr int longest = 4096;
    if (!request.size) {
        return CollageOutput::longEdge;
    }
    bool number = false;
    const int pixels = request.size->toInt(&number);
    if (!number || pixels < shortest || pixels > longest) {
        throw wrongValue(u"--size"_s, *request.size);
    }
    return pixels;
}

/// "name.jpg", then "name-2.jpg" and so on, in the folder as the user wrote it.
QString publish(const QString &source, const QString &file)
{
    const QFileInfo goal(file);
    const QString made = publishFile(source, goal.path(), [&goal](int attempt) {
        return attempt == 0
                   ? goal.fileName()
                   : goal.completeBaseName() + u'-' + QString::number(attempt + 1) + u'.' + goal.suffix();
    });
    return file.left(file.lastIndexOf(u'/') + 1) + QFileInfo(made).fileName();
}

void report(const CollageDesign &design, int longEdge, const QString &path, const ExportedFile &made)
{
    Json line;
    line["file"] = jsonText(path);
    line["width"] = made.canvas.width();
    line["height"] = made.canvas.height();
    line["bytes"] = made.bytes;
    line["layout"] = jsonText(design.preset.id);
    line["cells"] = Json::object();
    for (const auto &[slot, cell] : CollagePlan::of(design, longEdge).layout.cells) {
        line["cells"][std::to_string(slot)] = {cell.x(), cell.y(), cell.width(), cell.height()};
    }
    Console::print(QString::fromUtf8(writeJson(line)));
}

int makeCollage(const CollageRequest &request, const Interruption &interruption)
{
    const ExportOptions options = optionsFrom(request);
    const int longEdge = longEdgeFrom(request);
    // A try with any photos finds what is wrong with the options before a file is opened.
    designFrom(request, QList<QSizeF>(request.photos.size(), QSizeF(3, 2)));
    const TemporaryFolder temporary;
    ImagePipeline pipeline(QString(), temporary.path(), PipelineUse::Command);
    QList<PhotoItem> photos;
    QList<QSizeF> sizes;
    for (const QString &photo : request.photos) {
        try {
            photos.append(pipeline
                              .inspect({QFileInfo(photo).absoluteFilePath()}, ImagePipeline::TestDecode::No,
                                       interruption.token())
                              .result());
        } catch (const PipelineFailure &failure) {
            throw Refusal{photo, errorDescription(failure)};
        }
        sizes.append(photos.last().size());
    }
    const CollageDesign design = designFrom(request, sizes);
    makeFolder(QFileInfo(request.file).path());
    try {
        ProgressBar bar(static_cast<int>(photos.size()) + 1, request.quiet);
        const auto step = [&bar, &request](int drawn) {
            bar.show(drawn, QFileInfo(request.photos.value(drawn, request.file)).fileName());
        };
        const QImage image =
            CollageOutput::render(pipeline, design, photos, interruption.token(), {longEdge, step});
        step(static_cast<int>(photos.size()));
        const ExportedFile made = pipeline.exportImage(image, options, interruption.token()).result();
        const QString path = publish(made.path, request.file);
        bar.clear();
        if (request.json) {
            report(design, longEdge, path, made);
        }
    } catch (const PipelineFailure &failure) {
        const QString culprit = failure.file().isEmpty() ? request.file : failure.file();
        throw Refusal{culprit, errorDescription(failure)};
    } catch (const FileError &error) {
        throw Refusal{request.file, errorDescription(error)};
    }
    return 0;
}

} // namespace

int runCollage(const CollageRequest &request, const Interruption &interruption)
{
    if (request.photos.size() < fewestPhotos || request.photos.size() > mostPhotos) {
        throw UsageError{localized({"拼图需要 2 到 9 张照片。", "A collage takes 2 to 9 photos.",
                                    "Un collage prend 2 à 9 photos."})};
    }
    checkFile(request.file);
    try {
        return makeCollage(request, interruption);
    } catch (const Refusal &refusal) {
        Console::complain(refusal.what, refusal.message);
        return 1;
    } catch (const OperationCancelled &) {
        return interruption.exitStatus();
    }
}

int runLayouts(const QString &count, bool json)
{
    bool number = false;
    const int photos = count.toInt(&number);
    if (!number || photos < 1 || photos > mostPhotos) {
        throw UsageError{localized({"布局适用于 1 到 9 张照片。", "Layouts are for 1 to 9 photos.",
                                    "Les dispositions sont pour 1 à 9 photos."})};
    }
    for (const CollagePreset &preset : CollagePreset::all(photos)) {
        Json object;
        object["id"] = jsonText(preset.id);
        object["title"] = jsonText(preset.title);
        object["aspect"] = preset.aspect;
        const QString row = preset.id.leftJustified(12) +
                            QString::number(preset.aspect, 'f', 3).leftJustified(8) + preset.title;
        if (!Console::print(json ? QString::fromUtf8(writeJson(object)) : row)) {
            return 1;
        }
    }
    return 0;
}

} // namespace tarnovel::cli
