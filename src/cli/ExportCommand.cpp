#include "cli/ExportCommand.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <optional>
#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/Json.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/OutputOptions.h"
#include "cli/StyleEdit.h"
#include "export/ExportNames.h"
#include "language/AppLanguage.h"
#include "model/FrameSettingsJson.h"
#include "model/LibraryPaths.h"
#include "model/SessionStore.h"
#include "model/Signature.h"
#include "model/Styling.h"
#include "pipeline/ImagePipeline.h"
#include "pipeline/PipelineError.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

QString absolute(const QString &path)
{
    return QFileInfo(path).absoluteFilePath();
}

ExportOptions optionsFrom(const ExportRequest &request)
{
    ExportOptions options;
    if (request.size == u"original"_s) {
        options.fullResolution = true;
    } else {
        bool whole = false;
        options.longEdge = request.size.toInt(&whole);
        const bool digits =
            std::ranges::all_of(request.size, [](QChar each) { return each >= u'0' && each <= u'9'; });
        if (!whole || !digits || options.longEdge <= 0) {
            throw UsageError{localized({"--size 应为 1080、original 或像素数：",
                                        "--size takes 1080, original or a number of pixels: ",
                                        "--size prend 1080, original ou un nombre de pixels : "}) +
                             request.size};
        }
    }
    setFormat(options, request.format, request.maxMb);
    return options;
}

/// Files that a style names are looked for beside the style.
void resolveFiles(FrameSettings &settings, const QDir &folder)
{
    const auto resolve = [&folder](std::optional<QString> &file) {
        if (file) {
            file = QDir::cleanPath(folder.absoluteFilePath(*file));
        }
    };
    resolve(settings.backgroundFile);
    resolve(settings.handwritingFile);
    for (TextLayer &layer : settings.layers) {
        resolve(layer.imageFile);
    }
}

FrameSettings styleFrom(const QString &path)
{
    try {
        const Json json = parseJson(readJsonFile(path));
        FrameSettings settings = frameSettingsFromJson(JsonReader(json));
        settings.normalize();
        resolveFiles(settings, QFileInfo(path).absoluteDir());
        return settings;
    } catch (const FileError &error) {
        throw Refusal{path, localized({"无法读取这个样式：",
                                       "Cannot read this style: ", "Impossible de lire ce style\u202f: "}) +
                                errorDescription(error)};
    } catch (const JsonError &error) {
        throw Refusal{path, localized({"这不是有效的样式：", "Not a valid style: ", "Style non valide : "}) +
                                QString::fromStdString(error.what())};
    }
}

/// Width ÷ height of a picture that can be read; a Refusal for any other.
double aspectOf(const QString &path, ImagePipeline &pipeline, const Interruption &interruption)
{
    try {
        const QSizeF size =
            pipeline.inspect({absolute(path)}, ImagePipeline::TestDecode::Yes, interruption.token())
                .result()
                .size();
        return size.width() / size.height();
    } catch (const PipelineFailure &failure) {
        throw Refusal{path,
                      failure.trouble() || failure.fault() ? errorDescription(failure) : unreadablePicture()};
    }
}

/// The pictures that the options add to every photo, with what has to be known of them.
struct Pictures {
    std::optional<QString> background;
    std::optional<QString> logo;
    std::optional<QString> signature;
    double logoAspect = 1;
    double signatureAspect = 1;

    Pictures(const ExportRequest &request, ImagePipeline &pipeline, const Interruption &interruption)
        : background(request.background), logo(request.logo), signature(request.signature)
    {
        if (background) {
            aspectOf(*background, pipeline, interruption);
        }
        if (logo) {
            logoAspect = aspectOf(*logo, pipeline, interruption);
        }
        if (signature) {
            signatureAspect = aspectOf(*signature, pipeline, interruption);
        }
    }

    void apply(FrameSettings &settings) const
    {
        if (background) {
            settings.background = Backdrop::image;
            settings.backgroundFile = absolute(*background);
        }
        if (logo) {
            TextLayer &layer = *settings.layer(logoLayer);
            layer.imageFile = absolute(*logo);
            layer.imageAspect = logoAspect;
            layer.visible = true;
        }
        if (signature) {
            settings = withSignature(settings, absolute(*signature), signatureAspect);
        }
    }
};

/// Turns a photo as inspected into one with the style that was asked for.
using Styler = std::function<PhotoItem(const PhotoItem &, int index)>;

Styler stylerFrom(const ExportRequest &request, ImagePipeline &pipeline, const Interruption &interruption)
{
    const auto look = BuiltInTemplates::withId(request.templateId.value_or(u"plain"_s));
    if (!look) {
        throw UsageError{localized({"没有这个模板：", "There is no template ", "Modèle inconnu : "}) +
                         *request.templateId};
    }
    const std::optional<FrameSettings> style =
        request.styleFile ? std::optional(styleFrom(*request.styleFile)) : std::nullopt;
    const auto edit = [request](FrameSettings &settings) {
        for (const QString &assignment : request.sets) {
            StyleEdit::set(settings, assignment);
        }
        for (const QString &assignment : request.texts) {
            StyleEdit::setText(settings, assignment);
        }
    };
    // A try on an empty photo finds what is wrong with the options before any picture is opened.
    FrameSettings trial = style ? *style : BuiltInTemplates::make(*look, FrameSettings(), {});
    edit(trial);
    const Pictures pictures(request, pipeline, interruption);
    // The numbers of film frames go on from the style's own, so they are given after every other change.
    return [style, look, edit, pictures, &pipeline, &interruption](const PhotoItem &item, int index) {
        const bool wantsColors = !style && *look == BuiltInTemplate::tone;
        const QList<Ink> palette =
            wantsColors ? pipeline.primaryColors(item.file, interruption.token()).result() : QList<Ink>();
        PhotoItem result =
            styled(item, style ? *style : BuiltInTemplates::make(*look, item.settings, palette), 0);
        pictures.apply(result.settings);
        edit(result.settings);
        numberFilmFrame(result.settings, index);
        return result;
    };
}

Json rectangle(const QRectF &rect)
{
    return Json::array({rect.x(), rect.y(), rect.width(), rect.height()});
}

/// One run of the command.
class CommandRun {
public:
    CommandRun(const ExportRequest &request, const ExportOptions &options, ImagePipeline &pipeline,
               const Interruption &interruption, int total)
        : m_request(request),
          m_options(options),
          m_pipeline(pipeline),
          m_interruption(interruption),
          m_progress(total, request.quiet)
    {
    }

    /// `photo` is how the photo is called in messages; `item` makes it ready. While a photo is being written,
    /// the next one is read: each ends, with what is to be said of it, when the next has begun.
    void exportOne(const QString &photo, const std::function<PhotoItem()> &item)
    {
        m_progress.show(m_done, QFileInfo(photo).fileName());
        Begun begun{photo, {}, {}, {}};
        try {
            begun.item = item();
            begun.made = m_pipeline.exportPhoto(begun.item, m_options, m_interruption.token());
        } catch (const OperationCancelled &) {
            finish(); // which may be there already
            throw;
        } catch (const QException &) {
            begun.failure = std::current_exception();
        }
        if (const auto before = std::exchange(m_begun, begun)) {
            end(*before);
        }
    }

    /// Ends the last photo.
    void finish()
    {
        if (const auto last = std::exchange(m_begun, std::nullopt)) {
            end(*last);
        }
    }

    int status() const { return m_failed || m_deaf ? 1 : 0; }
    /// Nobody reads standard output any more.
    bool deaf() const { return m_deaf; }

private:
    /// A photo that is on its way, or why it is not.
    struct Begun {
        QString photo;
        PhotoItem item;
        QFuture<ExportedFile> made;
        std::exception_ptr failure;
    };

    void end(const Begun &begun)
    {
        const QString &photo = begun.photo;
        try {
            if (begun.failure) {
                std::rethrow_exception(begun.failure);
            }
            const ExportedFile made = begun.made.result();
            const QString extension = m_options.png ? u"png"_s : u"jpg"_s;
            const auto name = [&](int attempt) {
                return ExportNames::fileName(begun.item.name, extension, attempt);
            };
            report(photo, publishFile(made.path, m_request.folder, name, m_taken), begun.item, made);
        } catch (const PipelineFailure &failure) {
            const bool itself = failure.file().isEmpty();
            reportFailure(photo, (itself ? QString() : failure.file() + u": "_s) + errorDescription(failure));
        } catch (const FileError &error) {
            const QString temporary = QDir::tempPath();
            const bool elsewhere = error.path().startsWith(temporary + u"/tarnovel-run-"_s);
            const QString where =
                error.path() == u"memory"_s ? localized({"内存", "memory", "mémoire"})
                : elsewhere
                    ? localized({"临时文件夹 ", "temporary folder ", "dossier temporaire "}) + temporary
                    : m_request.folder;
            reportFailure(photo, where + u": "_s + errorDescription(error));
        }
        ++m_done;
    }

    void report(const QString &photo, const QString &path, const PhotoItem &item, const ExportedFile &made)
    {
        if (!m_request.json) {
            return;
        }
        const QRectF placed = CompositionRenderer::photoRect(item, item.settings, made.canvas);
        Json line;
        line["photo"] = jsonText(photo);
        line["file"] = jsonText(path);
        line["width"] = made.canvas.width();
        line["height"] = made.canvas.height();
        line["bytes"] = made.bytes;
        line["canvas"] = {made.canvas.width(), made.canvas.height()};
        line["photoRect"] = rectangle(placed);
        line["style"] = toJson(item.settings);
        print(line);
    }

    void reportFailure(const QString &photo, const QString &message)
    {
        m_failed = true;
        if (m_request.json) {
            print(Json{{"photo", jsonText(photo)}, {"error", jsonText(message)}});
        }
        m_progress.clear();
        Console::complain(photo, message);
    }

    void print(const Json &line) { m_deaf = !Console::print(QString::fromUtf8(writeJson(line))) || m_deaf; }

    const ExportRequest &m_request;
    const ExportOptions m_options;
    ImagePipeline &m_pipeline;
    const Interruption &m_interruption;
    int m_done = 0;
    std::optional<Begun> m_begun;
    TakenNames m_taken;
    bool m_failed = false;
    bool m_deaf = false;
    ProgressBar m_progress;
};

Session storedSession()
{
    const QString library = LibraryPaths::location();
    const LoadedSession loaded = loadSession(library, LibraryAccess::ReadOnly);
    const QString document = library + u'/' + LibraryPaths::sessionFileName();
    if (!loaded.decoded && QFileInfo::exists(document)) {
        throw Refusal{document, localized({"无法读取保存的编辑。", "Cannot read the stored session.",
                                           "Impossible de lire la session enregistrée."})};
    }
    if (loaded.session.photos.isEmpty()) {
        throw Refusal{document, localized({"没有保存的照片。", "There are no stored photos.",
                                           "Aucune photo enregistrée."})};
    }
    return loaded.session;
}

void checkSession(const ExportRequest &request)
{
    const bool styles = request.templateId || request.styleFile || !request.sets.isEmpty() ||
                        !request.texts.isEmpty() || request.background || request.logo || request.signature;
    if (!request.photos.isEmpty() || styles) {
        throw UsageError{localized(
            {"--session 按保存的样式导出保存的照片，不能再指定照片或样式。",
             "--session exports the stored photos in their stored styles; it takes no photo and no style.",
             "--session exporte les photos enregistrées avec leurs styles ; ni photo ni style en plus."})};
    }
}

int exportSession(const ExportRequest &request, const ExportOptions &options,
                  const Interruption &interruption)
{
    checkSession(request);
    const Session session = storedSession();
    makeFolder(request.folder);
    const TemporaryFolder temporary;
    ImagePipeline pipeline(LibraryPaths::location(), temporary.path(), PipelineUse::Command);
    CommandRun run(request, options, pipeline, interruption, static_cast<int>(session.photos.size()));
    for (const PhotoItem &item : session.photos) {
        run.exportOne(item.name, [&item] { return item; });
        if (run.deaf()) {
            break;
        }
    }
    if (!run.deaf()) {
        run.finish();
    }
    return run.status();
}

int exportPhotos(const ExportRequest &request, const ExportOptions &options, const Interruption &interruption)
{
    if (request.photos.isEmpty()) {
        throw UsageError{localized({"没有指定照片。", "No photo is named.", "Aucune photo indiquée."})};
    }
    const TemporaryFolder temporary;
    ImagePipeline pipeline(QDir::currentPath(), temporary.path(), PipelineUse::Command);
    const Styler styler = stylerFrom(request, pipeline, interruption);
    makeFolder(request.folder);
    CommandRun run(request, options, pipeline, interruption, static_cast<int>(request.photos.size()));
    for (int index = 0; const QString &photo : request.photos) {
        run.exportOne(photo, [&, index] {
            const auto inspected =
                pipeline.inspect({absolute(photo)}, ImagePipeline::TestDecode::No, interruption.token());
            return styler(inspected.result(), index);
        });
        ++index;
        if (run.deaf()) {
            break;
        }
    }
    if (!run.deaf()) {
        run.finish();
    }
    return run.status();
}

} // namespace

int runExport(const ExportRequest &request, const Interruption &interruption)
{
    const ExportOptions options = optionsFrom(request);
    if (request.styleFile && request.templateId) {
        throw UsageError{
            localized({"--template 与 --style 不能同时使用。", "--template and --style exclude each other.",
                       "--template et --style s’excluent."})};
    }
    try {
        return request.session ? exportSession(request, options, interruption)
                               : exportPhotos(request, options, interruption);
    } catch (const Refusal &refusal) {
        Console::complain(refusal.what, refusal.message);
        return 1;
    } catch (const OperationCancelled &) {
        return interruption.exitStatus();
    }
}

} // namespace tarnovel::cli
