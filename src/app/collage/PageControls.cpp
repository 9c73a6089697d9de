#include "app/collage/PageControls.h"

#include <algorithm>

#include <QBoxLayout>

#include "app/inspector/ColorDots.h"
#include "app/inspector/Section.h"
#include "app/kit/Label.h"
#include "app/kit/Segments.h"
#include "app/kit/Slider.h"
#include "app/kit/Theme.h"
#include "collage/CollagePage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

PageControls::PageControls(EditorState &state, CollageStudio &studio) : m_studio(studio), m_paper(new QWidget)
{
    auto *column = new QVBoxLayout(this);
    column->setSpacing(0);
    column->setAlignment(Qt::AlignTop);
    m_filmHint = makeHint(
        "info", said({"间距和背景随 35 毫米胶片而定。", "Spacing and background follow the 35 mm strip.",
                      "L’espacement et le fond suivent la bande 35 mm."}));
    column->addWidget(m_filmHint);
    const CollageDesign fresh;
    m_gap = addLength(said({"间距", "Gap", "Espacement"}), CollagePage::largestGap, fresh.gap,
                      &CollagePage::setGap);
    m_margin = addLength(said({"外边距", "Margin", "Marge"}), CollagePage::largestMargin, fresh.margin,
                         &CollagePage::setMargin);
    m_radius = addLength(said({"圆角", "Corners", "Coins"}), CollagePage::largestRadius, fresh.radius,
                         &CollagePage::setRadius);
    m_gap->setObjectName(u"gap"_s);
    m_margin->setObjectName(u"margin"_s);
    m_radius->setObjectName(u"corners"_s);
    column->addWidget(makeRule());
    column->addWidget(new Label(Type::Label, said({"比例", "Aspect", "Format"})));
    column->addSpacing(8);
    m_aspect = new Segments({said({"版式", "Layout", "Modèle"}), [] { return u"1:1"_s; },
                             [] { return u"4:5"_s; }, [] { return u"3:4"_s; }, [] { return u"9:16"_s; }});
    m_aspect->setName(said({"比例", "Aspect", "Format"}));
    column->addWidget(m_aspect);
    column->addSpacing(4);
    auto *paper = new QVBoxLayout(m_paper);
    paper->setContentsMargins(0, 0, 0, 0);
    paper->setSpacing(0);
    paper->addWidget(makeRule());
    paper->addWidget(new Label(Type::Label, said({"背景", "Background", "Fond"})));
    paper->addSpacing(4);
    m_background =
        new ColorDots(state, {{packedColor(0xFFFFFF), said({"白", "White", "Blanc"})},
                              {packedColor(0xF4F1EA), said({"暖白", "Warm white", "Blanc chaud"})},
                              {packedColor(0xC9C6BF), said({"浅灰", "Light grey", "Gris clair"})},
                              {packedColor(0x6E6D68), said({"灰", "Grey", "Gris"})},
                              {packedColor(0x0D0D0D), said({"黑", "Black", "Noir"})},
                              {packedColor(0xD9A184), said({"陶土", "Terracotta", "Terre cuite"})}});
    m_background->setName(said({"背景", "Background", "Fond"}));
    paper->addWidget(m_background);
    column->addWidget(m_paper);
    m_aspect->setObjectName(u"aspect"_s);
    m_background->setObjectName(u"paper"_s);
    connect(m_aspect, &ItemView::chosen, this, [this](int index) {
        CollagePage(m_studio).setAspect(collageAspects.at(static_cast<size_t>(index)));
    });
    const auto take = [this](const QColor &color) { CollagePage(m_studio).setBackground(color); };
    connect(m_background, &ColorDots::chosenColor, this, take);
    connect(m_background, &ColorDots::dragged, this, take);
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & CollageStudio::DesignChanged) {
            showState();
        }
    });
    showState();
}

Slider *PageControls::addLength(const Phrase &name, double largest, double usual,
                                void (CollagePage::*set)(double))
{
    auto *slider = new Slider(
        name,
        {.low = 0, .high = largest * 100, .step = 0.5, .decimals = 1, .unit = u" %"_s, .usual = usual * 100});
    auto *column = static_cast<QVBoxLayout *>(layout());
    column->addWidget(slider);
    column->addSpacing(8);
    connect(slider, &Slider::changed, this,
            [this, set](double value) { (CollagePage(m_studio).*set)(value / 100); });
    return slider;
}

void PageControls::showState()
{
    const CollageDesign &design = m_studio.design();
    m_gap->setValue(design.gap * 100);
    m_margin->setValue(design.margin * 100);
    m_radius->setValue(design.radius * 100);
    m_aspect->setCurrent(
        static_cast<int>(std::ranges::find(collageAspects, design.aspect) - collageAspects.begin()));
    m_background->setColor(design.background);
    m_filmHint->setVisible(design.preset.film);
    for (Slider *slider : {m_gap, m_margin, m_radius}) {
        slider->setEnabled(!design.preset.film);
    }
    m_paper->setVisible(!design.preset.film);
}

} // namespace tarnovel::app
