#include "cli/StyleOptions.h"

#include <algorithm>
#include <utility>

#include <QDir>
#include <QFileInfo>

#include "base/FileError.h"
#include "cli/Console.h"
#include "cli/OutputOptions.h"
#include "cli/StyleEdit.h"
#include "film/FilmStockCatalog.h"
#include "language/AppLanguage.h"
#include "model/FrameSettingsJson.h"
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
        throw Refusal{path, localized({"这不是有效的样式：", "Not a valid style: ", "Style non valide : "}) +
                                QString::fromStdString(error.what())};
    }
}

/// Width ÷ height of a picture that can be read; a Refusal for any other.
double aspectOf(const QString &path, ImagePipeline &pipeline, const std::stop_token &stop)
{
    try {
        const QSizeF size =
            pipeline.inspect({absolute(path)}, ImagePipeline::TestDecode::Yes, stop).result().size();
        return size.width() / size.height();
    } catch (const PipelineFailure &failure) {
        throw Refusal{path, failure.trouble() || failure.hasTellingFault() ? errorDescription(failure)
                                                                           : unreadablePicture()};
    }
}

} // namespace

/// The pictures that the options add to every photo, with what has to be known of them.
struct StylePictures {
    std::optional<QString> background;
    std::optional<QString> logo;
    std::optional<QString> signature;
    double logoAspect = 1;
    double signatureAspect = 1;

    StylePictures(const StyleRequest &request, ImagePipeline &pipeline, const std::stop_token &stop)
        : background(request.background), logo(request.logo), signature(request.signature)
    {
        if (background) {
            aspectOf(*background, pipeline, stop);
        }
        if (logo) {
            logoAspect = aspectOf(*logo, pipeline, stop);
        }
        if (signature) {
            signatureAspect = aspectOf(*signature, pipeline, stop);
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

namespace {

void edit(FrameSettings &settings, const StyleRequest &request)
{
    for (const QString &assignment : request.sets) {
        StyleEdit::set(settings, assignment);
    }
    for (const QString &assignment : request.texts) {
        StyleEdit::setText(settings, assignment);
    }
}

BuiltInTemplate lookOf(const StyleRequest &request)
{
    const auto look = BuiltInTemplates::withId(request.templateId.value_or(u"plain"_s));
    if (!look) {
        throw UsageError{localized({"没有这个模板：", "There is no template ", "Modèle inconnu : "}) +
                         *request.templateId};
    }
    return *look;
}

/// The style before it meets a photo, with every change tried on it.
FrameSettings triedOut(const StyleRequest &request, BuiltInTemplate look,
                       const std::optional<FrameSettings> &style)
{
    FrameSettings trial = style ? *style : BuiltInTemplates::make(look, FrameSettings(), {});
    edit(trial, request);
    return trial;
}

} // namespace

bool StyleRequest::isEmpty() const
{
    return !templateId && !styleFile && sets.isEmpty() && texts.isEmpty() && !background && !logo &&
           !signature;
}

QStringList StyleRequest::arguments() const
{
    QStringList list;
    const auto add = [&list](const QString &option, const std::optional<QString> &value) {
        if (value) {
            list.append(option + u'=' + *value);
        }
    };
    add(u"--template"_s, templateId);
    add(u"--style"_s, styleFile);
    add(u"--background"_s, background);
    add(u"--logo"_s, logo);
    add(u"--signature"_s, signature);
    for (const QString &assignment : sets) {
        add(u"--set"_s, assignment);
    }
    for (const QString &assignment : texts) {
        add(u"--text"_s, assignment);
    }
    return list;
}

struct Styler::Parts {
    StyleRequest request;
    BuiltInTemplate look;
    std::optional<FrameSettings> style;
    FrameSettings trial;
    StylePictures pictures;

    Parts(const StyleRequest &asked, ImagePipeline &pipeline, const std::stop_token &stop)
        : request(asked),
          look(lookOf(asked)),
          style(asked.styleFile ? std::optional(styleFrom(*asked.styleFile)) : std::nullopt),
          trial(triedOut(asked, look, style)),
          pictures(asked, pipeline, stop)
    {
    }
};

Styler::Styler(const StyleRequest &request, ImagePipeline &pipeline, std::stop_token stop)
    : m_parts(std::make_unique<Parts>(request, pipeline, stop)), m_pipeline(pipeline), m_stop(std::move(stop))
{
}

Styler::~Styler() = default;

PhotoItem Styler::styled(const PhotoItem &inspected, int index) const
{
    const bool wantsColors = !m_parts->style && m_parts->look == BuiltInTemplate::tone;
    return made(inspected, index,
                wantsColors ? m_pipeline.primaryColors(inspected.file, m_stop).result() : QList<Ink>());
}

PhotoItem Styler::shaped(const PhotoItem &inspected, int index) const
{
    return made(inspected, index, {});
}

PhotoItem Styler::made(const PhotoItem &inspected, int index, const QList<Ink> &palette) const
{
    const FrameSettings look =
        m_parts->style ? *m_parts->style : BuiltInTemplates::make(m_parts->look, inspected.settings, palette);
    PhotoItem result = tarnovel::styled(inspected, look, 0);
    m_parts->pictures.apply(result.settings);
    edit(result.settings, m_parts->request);
    // The numbers of film frames go on from the style's own, so they are given after every other change.
    numberFilmFrame(result.settings, index);
    return result;
}

QString Styler::templateId() const
{
    return m_parts->trial.templateID.value_or(QString());
}

QStringList Styler::warnings() const
{
    const std::optional<FilmOptions> &film = m_parts->trial.film;
    if (!film || m_parts->trial.style != FrameStyle::film || FilmOptions::stocks().contains(film->stock)) {
        return {};
    }
    return {localized({"目录里没有这种胶卷，片边照写它的名称：",
                       "The catalogue has no such film stock; its name is printed as it is: ",
                       "Le catalogue n’a pas cette pellicule ; son nom est imprimé tel quel : "}) +
            film->stock};
}

} // namespace tarnovel::cli
