#include "app/inspector/BorderSection.h"

#include <QBoxLayout>

#include "app/inspector/ColorDots.h"
#include "app/kit/Segments.h"
#include "app/kit/Slider.h"
#include "app/kit/Swatches.h"
#include "app/kit/Theme.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

BorderSection::BorderSection(const EditingContext &context) : Section(context)
{
    addHeading(said({"边框样式", "Frame style", "Style de cadre"}));
    m_style = new Segments({said({"简约", "Simple", "Simple"}), said({"拍立得", "Instant", "Instantané"}),
                            said({"胶片", "Film", "Film"}), said({"电影", "Cinema", "Cinéma"})});
    m_style->setName(said({"边框样式", "Frame style", "Style de cadre"}));
    column()->addWidget(m_style);
    addRule();
    m_width = new Slider(said({"粗细", "Width", "Largeur"}),
                         {.low = 0, .high = 4, .step = 0.1, .decimals = 1, .unit = u" %"_s, .usual = 0.6});
    column()->addWidget(m_width);
    addRule();
    addHeading(said({"颜色", "Color", "Couleur"}));
    m_photoColors = new Swatches(Swatches::Shape::Tiles);
    m_photoColors->setName(said({"照片主色", "Photo colors", "Couleurs de la photo"}));
    column()->addWidget(m_photoColors);
    column()->addSpacing(4);
    m_dots =
        new ColorDots(context.state, {{packedColor(0x0D0D0D), said({"黑", "Black", "Noir"})},
                                      {packedColor(0x2A2A28), said({"炭黑", "Charcoal", "Anthracite"})},
                                      {packedColor(0x6E6D68), said({"灰", "Grey", "Gris"})},
                                      {packedColor(0xC9C6BF), said({"浅灰", "Light grey", "Gris clair"})},
                                      {packedColor(0xF4F1EA), said({"暖白", "Warm white", "Blanc chaud"})},
                                      {packedColor(0xFFFFFF), said({"白", "White", "Blanc"})}});
    m_dots->setName(said({"边框颜色", "Border color", "Couleur de la bordure"}));
    column()->addWidget(m_dots);
    m_style->setObjectName(u"style"_s);
    m_width->setObjectName(u"width"_s);
    m_photoColors->setObjectName(u"photoColors"_s);
    m_dots->setObjectName(u"color"_s);

    connect(m_style, &ItemView::chosen, this, [this](int index) {
        edits().step([index](FrameSettings &settings) {
            settings.style = static_cast<FrameStyle>(index);
            if (settings.style == FrameStyle::film && !settings.film) {
                settings.film = FilmOptions();
            }
        });
    });
    connect(m_width, &Slider::changed, this, [this](double value) {
        edits().adjust(u"border"_s, [value](FrameSettings &settings) { settings.border = value / 100; });
    });
    connect(m_width, &Slider::released, this, [this] { edits().endAdjusting(); });
    const auto take = [this](const QColor &color) {
        edits().step([ink = inkOf(color)](FrameSettings &settings) { settings.borderColor = ink; });
    };
    connect(m_photoColors, &Swatches::colorChosen, this, take);
    connect(m_dots, &ColorDots::chosenColor, this, take);
    connect(m_dots, &ColorDots::dragged, this, [this](const QColor &color) {
        edits().adjust(u"borderColor"_s,
                       [ink = inkOf(color)](FrameSettings &settings) { settings.borderColor = ink; });
    });
}

void BorderSection::display(const PhotoItem &photo)
{
    m_style->setCurrent(static_cast<int>(photo.settings.style));
    m_width->setValue(photo.settings.border * 100);
    QList<Swatches::Entry> colors;
    for (const Ink &ink : model().previews().palette) {
        colors.append({CompositionRenderer::opaque(ink), {}});
    }
    m_photoColors->setVisible(!colors.isEmpty());
    m_photoColors->setEntries(colors);
    const QColor color = CompositionRenderer::opaque(photo.settings.borderColor);
    m_photoColors->setColor(color);
    m_dots->setColor(color);
}

void BorderSection::reset()
{
    edits().step([](FrameSettings &settings) {
        const FrameSettings fresh;
        settings.style = fresh.style;
        settings.border = fresh.border;
        settings.borderColor = fresh.borderColor;
    });
}

} // namespace tarnovel::app
