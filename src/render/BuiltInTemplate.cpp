#include "render/BuiltInTemplate.h"

#include <algorithm>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::BuiltInTemplates {

namespace {

struct Row {
    BuiltInTemplate look;
    const char *id;
    Text title;
};

constexpr std::array<Row, 14> rows = {{
    {BuiltInTemplate::plain, "plain", {"素白", "Pure", "Pur"}},
    {BuiltInTemplate::full, "full", {"无边框", "No border", "Sans bord"}},
    {BuiltInTemplate::caption, "caption", {"题记", "Story", "Récit"}},
    {BuiltInTemplate::signature, "signature", {"落款", "Signature", "Signature"}},
    {BuiltInTemplate::sky, "sky", {"天光", "Sky", "Ciel"}},
    {BuiltInTemplate::ground, "ground", {"地白", "Space", "Espace"}},
    {BuiltInTemplate::side, "side", {"侧记", "Side note", "Aparté"}},
    {BuiltInTemplate::gallery, "gallery", {"展签", "Gallery", "Galerie"}},
    {BuiltInTemplate::gear, "gear", {"器物", "Camera", "Appareil"}},
    {BuiltInTemplate::instant, "instant", {"拍立得", "Instant", "Instantané"}},
    {BuiltInTemplate::film, "film", {"胶片", "Film", "Film"}},
    {BuiltInTemplate::tone, "tone", {"映色", "Color", "Couleur"}},
    {BuiltInTemplate::cinema, "cinema", {"电影 · 双语", "Cinema · bilingual", "Cinéma · bilingue"}},
    {BuiltInTemplate::cinemaEN, "cinemaEN", {"电影 · 英文", "Cinema · English", "Cinéma · anglais"}},
}};

const Row &row(BuiltInTemplate look)
{
    return *std::ranges::find(rows, look, &Row::look);
}

/// What every template starts from: the user's canvas, film options, texts and logos, and nothing else of the
/// old look.
FrameSettings common(const FrameSettings &settings)
{
    FrameSettings kept = settings;
    kept.normalize();
    FrameSettings made;
    made.preset = kept.preset;
    made.customWidth = kept.customWidth;
    made.customHeight = kept.customHeight;
    made.film = kept.film;
    for (qsizetype i = 0; i < made.layers.size(); ++i) {
        made.layers[i].text = kept.layers.at(i).text;
        made.layers[i].imageFile = kept.layers.at(i).imageFile;
        made.layers[i].imageAspect = kept.layers.at(i).imageAspect;
    }
    return made;
}

void show(FrameSettings &made, const QString &id)
{
    made.layer(id)->visible = true;
}

void place(FrameSettings &made, double scale, double x, double y)
{
    made.scale = scale;
    made.x = x;
    made.y = y;
}

void subtitle(TextLayer &layer, double y, double size)
{
    layer.visible = true;
    layer.x = 0.5;
    layer.y = y;
    layer.size = size;
    layer.ink = {1, 1, 1};
    layer.rotation = 0;
    layer.fontStyle = u"system"_s;
}

void makeCinema(FrameSettings &made, BuiltInTemplate look)
{
    made.preset = CanvasPreset::custom;
    made.customWidth = 16;
    made.customHeight = 9;
    made.style = FrameStyle::cinema;
    made.scale = 1;
    made.border = 0;
    made.color = softBlack;
    TextLayer &title = *made.layer(u"title"_s);
    TextLayer &caption = *made.layer(u"caption"_s);
    subtitle(title, 0.785, 0.026);
    if (look == BuiltInTemplate::cinema) {
        subtitle(caption, 0.835, 0.019);
    } else {
        title.visible = false;
        subtitle(caption, 0.81, 0.024);
    }
    if (title.text.isEmpty()) {
        title.text = u"我们终会抵达那片光。"_s;
    }
    if (caption.text.isEmpty()) {
        caption.text = u"We'll reach that light, eventually."_s;
    }
}

void makeGallery(FrameSettings &made)
{
    place(made, 0.76, 0, -0.065);
    show(made, u"title"_s);
    show(made, u"caption"_s);
    TextLayer &title = *made.layer(u"title"_s);
    title.x = 0.27;
    title.y = 0.89;
    title.size = 0.027;
    TextLayer &caption = *made.layer(u"caption"_s);
    caption.x = 0.72;
    caption.y = 0.89;
    caption.size = 0.021;
}

void makeFilm(FrameSettings &made)
{
    made.style = FrameStyle::film;
    made.preset = CanvasPreset::original;
    made.scale = 1;
    made.border = 0;
    made.color = softBlack;
}

void makeTone(FrameSettings &made, const QList<Ink> &palette)
{
    made.scale = 0.76;
    made.border = 0.008;
    made.borderColor = {1, 1, 1};
    made.color = palette.isEmpty() ? Ink{0.78, 0.8, 0.78} : palette.first();
}

/// The templates that move the photo and show the title in a place of its own.
void makeTitled(FrameSettings &made, BuiltInTemplate look)
{
    TextLayer &title = *made.layer(u"title"_s);
    title.visible = true;
    switch (look) {
    case BuiltInTemplate::signature:
        place(made, 0.82, 0, -0.025);
        title.x = 0.72;
        title.y = 0.93;
        title.size = 0.023;
        break;
    case BuiltInTemplate::sky:
        place(made, 0.6, 0, 0.15);
        title.y = 0.18;
        title.fontStyle = u"serif"_s;
        break;
    case BuiltInTemplate::ground:
        place(made, 0.6, 0, -0.15);
        title.y = 0.8;
        title.fontStyle = u"serif"_s;
        break;
    case BuiltInTemplate::side:
        place(made, 0.7, -0.06, 0);
        title.x = 0.91;
        title.y = 0.5;
        title.rotation = 90;
        title.fontStyle = u"serif"_s;
        break;
    default:
        made.style = FrameStyle::instant;
        place(made, 0.82, 0, -0.05);
        made.border = 0;
        title.y = 0.88;
        title.size = 0.028;
        break;
    }
}

} // namespace

const QList<BuiltInTemplate> &all()
{
    static const QList<BuiltInTemplate> looks = [] {
        QList<BuiltInTemplate> list;
        for (const Row &each : rows) {
            list.append(each.look);
        }
        return list;
    }();
    return looks;
}

QString id(BuiltInTemplate look)
{
    return QString::fromLatin1(row(look).id);
}

std::optional<BuiltInTemplate> withId(const QString &id)
{
    const auto found =
        std::ranges::find_if(rows, [&id](const Row &each) { return id == QLatin1StringView(each.id); });
    return found == rows.end() ? std::nullopt : std::optional(found->look);
}

QString title(BuiltInTemplate look)
{
    return localized(row(look).title);
}

FrameSettings make(BuiltInTemplate look, const FrameSettings &settings, const QList<Ink> &palette)
{
    FrameSettings made = common(settings);
    made.templateID = id(look);
    switch (look) {
    case BuiltInTemplate::plain:
        break;
    case BuiltInTemplate::full:
        made.preset = CanvasPreset::original;
        made.scale = 1;
        made.border = 0;
        break;
    case BuiltInTemplate::caption:
        place(made, 0.76, 0, -0.065);
        show(made, u"title"_s);
        show(made, u"caption"_s);
        break;
    case BuiltInTemplate::signature:
    case BuiltInTemplate::sky:
    case BuiltInTemplate::ground:
    case BuiltInTemplate::side:
    case BuiltInTemplate::instant:
        makeTitled(made, look);
        break;
    case BuiltInTemplate::gallery:
        makeGallery(made);
        break;
    case BuiltInTemplate::gear:
        place(made, 0.76, 0, -0.06);
        for (const char *layer : {"brand", "model", "exif"}) {
            show(made, QString::fromLatin1(layer));
        }
        break;
    case BuiltInTemplate::film:
        makeFilm(made);
        break;
    case BuiltInTemplate::tone:
        makeTone(made, palette);
        break;
    case BuiltInTemplate::cinema:
    case BuiltInTemplate::cinemaEN:
        makeCinema(made, look);
        break;
    }
    return made;
}

} // namespace tarnovel::BuiltInTemplates
