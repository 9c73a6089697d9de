#include "app/inspector/BackgroundSection.h"

#include <QBoxLayout>

#include "app/kit/Button.h"
#include "app/kit/ColorPicker.h"
#include "app/kit/Label.h"
#include "app/kit/Segments.h"
#include "app/kit/Swatches.h"
#include "app/kit/Theme.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

QList<Swatches::Entry> papers()
{
    return {{packedColor(0xFFFFFF), said({"白", "White", "Blanc"})},
            {packedColor(0xF4F1EA), said({"暖白", "Warm white", "Blanc chaud"})},
            {packedColor(0xE6E2DA), said({"米色", "Cream", "Crème"})},
            {packedColor(0xC9C6BF), said({"浅灰", "Light grey", "Gris clair"})},
            {packedColor(0x6E6D68), said({"灰", "Grey", "Gris"})},
            {packedColor(0x2A2A28), said({"炭黑", "Charcoal", "Anthracite"})},
            {packedColor(0x0D0D0D), said({"黑", "Black", "Noir"})}};
}

} // namespace

BackgroundSection::BackgroundSection(const EditingContext &context) : Section(context)
{
    m_kind = new Segments({said({"纯色", "Solid", "Uni"}), said({"渐变", "Gradient", "Dégradé"}),
                           said({"模糊", "Blur", "Flou"}), said({"图片", "Image", "Image"})});
    m_kind->setName(said({"背景", "Background", "Fond"}));
    column()->addWidget(m_kind);
    m_kind->setObjectName(u"kind"_s);
    m_filmHint = makeHint("info", said({"胶片边框会盖住背景。", "A film frame covers the background.",
                                        "Un cadre film recouvre le fond."}));
    column()->addSpacing(12);
    column()->addWidget(m_filmHint);
    addColors();
    m_blurHint =
        makeHint("info", said({"背景是照片本身的模糊。", "The background is the photo itself, blurred.",
                               "Le fond est la photo elle-même, floutée."}));
    column()->addWidget(m_blurHint);
    m_picture = new QWidget;
    auto *picture = new QVBoxLayout(m_picture);
    picture->setContentsMargins(0, 0, 0, 0);
    picture->setSpacing(12);
    m_choose = new Button(Button::Kind::Secondary, said({"选择图片…", "Choose image…", "Choisir une image…"}),
                          "image");
    m_choose->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    picture->addWidget(m_choose);
    picture->addWidget(
        makeHint("info", said({"也可以把图片拖到窗口上。", "You can also drop an image on the window.",
                               "Vous pouvez aussi déposer une image sur la fenêtre."})));
    column()->addWidget(m_picture);
    m_choose->setObjectName(u"chooseImage"_s);
    connect(m_choose, &QPushButton::clicked, &context.state, &EditorState::backgroundAsked);
    connect(m_kind, &ItemView::chosen, this, [this](int index) {
        const auto kind = static_cast<Backdrop>(index);
        edits().step([kind](FrameSettings &settings) { settings.background = kind; });
    });
}

void BackgroundSection::addColors()
{
    m_colors = new QWidget;
    auto *box = new QVBoxLayout(m_colors);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(8);
    m_which = new Segments({said({"第一色", "First color", "Première couleur"}),
                            said({"第二色", "Second color", "Seconde couleur"})});
    m_which->setName(said({"渐变颜色", "Gradient color", "Couleur du dégradé"}));
    m_which->setCurrent(0);
    box->addWidget(m_which);
    m_palette = new QWidget;
    auto *palette = new QVBoxLayout(m_palette);
    palette->setContentsMargins(0, 0, 0, 0);
    palette->setSpacing(4);
    palette->addWidget(new Label(
        Type::Label, said({"照片主色 · 前 3", "Photo colors · Top 3", "Couleurs de la photo · Top 3"})));
    m_photoColors = new Swatches(Swatches::Shape::Tiles);
    m_photoColors->setName(said({"照片主色", "Photo colors", "Couleurs de la photo"}));
    palette->addWidget(m_photoColors);
    palette->addWidget(makeRule());
    box->addWidget(m_palette);
    box->addWidget(new Label(Type::Label, said({"纸张", "Paper", "Papier"})));
    m_papers = new Swatches(Swatches::Shape::Dots);
    m_papers->setName(said({"纸张", "Paper", "Papier"}));
    m_papers->setEntries(papers());
    box->addWidget(m_papers);
    box->addWidget(makeRule());
    box->addWidget(new Label(Type::Label, said({"自定义颜色", "Custom color", "Couleur personnalisée"})));
    m_picker = new ColorPicker;
    box->addWidget(m_picker);
    column()->addWidget(m_colors);
    m_which->setObjectName(u"whichColor"_s);
    m_photoColors->setObjectName(u"photoColors"_s);
    m_papers->setObjectName(u"papers"_s);
    m_picker->setObjectName(u"picker"_s);
    connect(m_which, &ItemView::chosen, this, [this] { refresh(); });
    connect(m_photoColors, &Swatches::colorChosen, this,
            [this](const QColor &color) { setColor(color, false); });
    connect(m_papers, &Swatches::colorChosen, this, [this](const QColor &color) { setColor(color, false); });
    connect(m_picker, &ColorPicker::changed, this, [this](const QColor &color) { setColor(color, true); });
    connect(m_picker, &ColorPicker::released, this, [this] { edits().endAdjusting(); });
    connect(m_picker, &ColorPicker::dropperRequested, this,
            [this] { state().pickColor([this](const QColor &color) { setColor(color, false); }); });
}

bool BackgroundSection::second() const
{
    return m_kind->current() == static_cast<int>(Backdrop::gradient) && m_which->current() == 1;
}

void BackgroundSection::setColor(const QColor &color, bool dragging)
{
    const auto change = [ink = inkOf(color), other = second()](FrameSettings &settings) {
        (other ? settings.secondColor : settings.color) = ink;
    };
    if (dragging) {
        edits().adjust(second() ? u"secondColor"_s : u"color"_s, change);
    } else {
        edits().step(change);
    }
}

void BackgroundSection::display(const PhotoItem &photo)
{
    const FrameSettings &settings = photo.settings;
    m_kind->setCurrent(static_cast<int>(settings.background));
    const bool gradient = settings.background == Backdrop::gradient;
    m_filmHint->setVisible(settings.style == FrameStyle::film);
    m_colors->setVisible(gradient || settings.background == Backdrop::solid);
    m_which->setVisible(gradient);
    m_blurHint->setVisible(settings.background == Backdrop::blur);
    m_picture->setVisible(settings.background == Backdrop::image);
    m_choose->setPhrase(settings.backgroundFile ? said({"更换图片…", "Replace image…", "Remplacer l’image…"})
                                                : said({"选择图片…", "Choose image…", "Choisir une image…"}));
    QList<Swatches::Entry> colors;
    for (const Ink &ink : model().previews().palette) {
        colors.append({CompositionRenderer::opaque(ink), {}});
    }
    m_palette->setVisible(!colors.isEmpty());
    m_photoColors->setEntries(colors);
    const QColor color = CompositionRenderer::opaque(second() ? settings.secondColor : settings.color);
    m_photoColors->setColor(color);
    m_papers->setColor(color);
    m_picker->setColor(color);
}

void BackgroundSection::reset()
{
    edits().step([](FrameSettings &settings) {
        const FrameSettings fresh;
        settings.background = fresh.background;
        settings.color = fresh.color;
        settings.secondColor = fresh.secondColor;
        settings.backgroundFile = fresh.backgroundFile;
    });
}

} // namespace tarnovel::app
