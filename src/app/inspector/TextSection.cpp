#include "app/inspector/TextSection.h"

#include <algorithm>
#include <array>

#include <QBoxLayout>
#include <QUuid>

#include "app/inspector/ColorDots.h"
#include "app/inspector/LayerControls.h"
#include "app/inspector/LayerList.h"
#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/Segments.h"
#include "app/kit/Theme.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr std::array faces = {"", "serif", "rounded", "mono", "handwritten"};

bool isOfCamera(const QString &id)
{
    return id == u"brand"_s || id == u"model"_s || id == u"exif"_s;
}

/// Titles come first in the list, though the camera's texts are drawn first; those have a tool of their own
/// and are listed only while one of them is at hand.
QList<TextLayer> listed(const FrameSettings &settings, const QString &atHand)
{
    static const QStringList order = {u"title"_s, u"caption"_s, u"date"_s, logoLayer,
                                      u"brand"_s, u"model"_s,   u"exif"_s};
    QList<TextLayer> layers;
    for (const QString &id : order) {
        if (isOfCamera(id) && id != atHand) {
            continue;
        }
        const TextLayer *layer = settings.layer(id);
        // A logo with a picture has its own section.
        if (layer && !layer->imageFile) {
            layers.append(*layer);
        }
    }
    for (const TextLayer &layer : settings.layers) {
        if (!order.contains(layer.id)) {
            layers.append(layer);
        }
    }
    return layers;
}

bool isOwn(const QString &id)
{
    const QList<TextLayer> &known = defaultLayers();
    return std::none_of(known.begin(), known.end(), [&id](const TextLayer &layer) { return layer.id == id; });
}

} // namespace

int fontIndex(const TextLayer &layer)
{
    for (size_t i = 1; i < faces.size(); ++i) {
        if (layer.fontStyle == QLatin1StringView(faces.at(i))) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

std::optional<QString> fontAt(int index)
{
    return index == 0 ? std::nullopt
                      : std::optional(QString::fromLatin1(faces.at(static_cast<size_t>(index))));
}

Segments *makeFontSegments()
{
    auto *segments = new Segments({said({"系统", "Sans", "Sans"}), said({"衬线", "Serif", "Serif"}),
                                   said({"圆体", "Round", "Rond"}), said({"等宽", "Mono", "Mono"}),
                                   said({"手写", "Hand", "Main"})});
    segments->setName(said({"字体", "Font", "Police"}));
    return segments;
}

TextSection::TextSection(const EditingContext &context) : Section(context)
{
    m_list = new LayerList;
    column()->addWidget(m_list);
    m_list->setObjectName(u"layers"_s);
    auto *add = new Button(Button::Kind::Link, said({"添加文字", "Add text", "Ajouter un texte"}), "plus");
    column()->addSpacing(4);
    m_camera = new Button(Button::Kind::Link, {}, "camera");
    m_camera->setObjectName(u"cameraInfo"_s);
    column()->addWidget(add);
    column()->addWidget(m_camera);
    connect(m_camera, &QPushButton::clicked, this, [this] { state().setTool(Tool::Camera); });
    add->setObjectName(u"addText"_s);
    addRule();
    m_editor = new QWidget;
    column()->addWidget(m_editor);
    addEditor();
    connect(add, &QPushButton::clicked, this, &TextSection::addLayer);
    connect(&context.state, &EditorState::layerChanged, this, [this] {
        if (isVisible()) {
            refresh();
        }
    });
    connect(m_list, &ItemView::chosen, this, [this](int index) {
        state().selectLayer(m_list->layers().at(index).id);
        refresh();
    });
    connect(m_list, &LayerList::rowClicked, this, &TextSection::editText);
    connect(m_list, &ItemView::activated, this, &TextSection::editText);
    connect(m_list, &LayerList::visibilityAsked, this, [this](int index) {
        const QString id = m_list->layers().at(index).id;
        edits().step(inLayer(id, [](TextLayer &layer) { layer.visible = !layer.visible; }));
    });
    connect(m_list, &ItemView::menuRequested, this, [this](int index) {
        if (isOwn(m_list->layers().at(index).id)) {
            state().selectLayer(m_list->layers().at(index).id);
            removeLayer();
        }
    });
}

void TextSection::addEditor()
{
    auto *box = new QVBoxLayout(m_editor);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(8);
    box->addWidget(new Label(Type::Label, said({"内容", "Text", "Contenu"})));
    m_text = new Field(said({"内容", "Text", "Contenu"}));
    m_text->setGivesKeyboardBack(true);
    box->addWidget(m_text);
    box->addSpacing(4);
    box->addWidget(new Label(Type::Label, said({"字体", "Font", "Police"})));
    m_font = makeFontSegments();
    box->addWidget(m_font);
    box->addWidget(makeRule());
    m_shape = new LayerShape(edits());
    box->addWidget(m_shape);
    auto *ink = new QHBoxLayout;
    ink->setSpacing(16);
    ink->addWidget(new Label(Type::Label, said({"颜色", "Color", "Couleur"})));
    m_ink = new ColorDots(state(), {});
    m_ink->setName(said({"文字颜色", "Text color", "Couleur du texte"}));
    ink->addWidget(m_ink, 1);
    box->addLayout(ink);
    box->addWidget(makeRule());
    m_place = new LayerPlace(model(), edits());
    box->addWidget(m_place);
    m_remove = new Button(Button::Kind::DangerGhost, said({"删除文字", "Remove text", "Supprimer le texte"}),
                          "trash");
    box->addWidget(m_remove);
    m_text->setObjectName(u"text"_s);
    m_font->setObjectName(u"font"_s);
    m_ink->setObjectName(u"ink"_s);
    m_remove->setObjectName(u"removeText"_s);

    connect(m_text, &QLineEdit::textEdited, this,
            [this](const QString &text) { edits().adjust(u"text "_s + m_id, inLayer(m_id, typed(text))); });
    connect(m_text, &QLineEdit::editingFinished, this, [this] {
        m_text->setModified(false);
        edits().endAdjusting();
    });
    connect(m_font, &ItemView::chosen, this, [this](int index) {
        edits().step(inLayer(m_id, [index](TextLayer &layer) { layer.fontStyle = fontAt(index); }));
    });
    connect(m_ink, &ColorDots::chosenColor, this, [this](const QColor &color) {
        edits().step(inLayer(m_id, [&color](TextLayer &layer) { layer.ink = inkOf(color); }));
    });
    connect(m_ink, &ColorDots::dragged, this, [this](const QColor &color) {
        edits().adjust(u"ink "_s + m_id,
                       inLayer(m_id, [&color](TextLayer &layer) { layer.ink = inkOf(color); }));
    });
    connect(m_remove, &QPushButton::clicked, this, &TextSection::removeLayer);
}

QString TextSection::shownLayer(const PhotoItem &photo) const
{
    const std::optional<QString> &selected = state().selectedLayer();
    if (selected && photo.settings.layer(*selected) && !photo.settings.layer(*selected)->imageFile) {
        return *selected;
    }
    return photo.settings.layer(m_id) && !photo.settings.layer(m_id)->imageFile ? m_id : u"title"_s;
}

void TextSection::display(const PhotoItem &photo)
{
    m_id = shownLayer(photo);
    const QList<TextLayer> layers = listed(photo.settings, m_id);
    m_list->setLayers(layers);
    const auto shown = std::ranges::count_if(photo.settings.layers, [](const TextLayer &layer) {
        return isOfCamera(layer.id) && layer.visible && !layer.text.trimmed().isEmpty();
    });
    m_camera->setPhrase([shown] {
        return localized({"相机信息 ", "Camera info ", "Infos photo "}) + QString::number(shown) + u" ›"_s;
    });
    const auto place = std::ranges::find(layers, m_id, &TextLayer::id);
    m_list->setCurrent(static_cast<int>(place - layers.begin()));
    const TextLayer *layer = photo.settings.layer(m_id);
    m_editor->setVisible(layer);
    if (!layer) {
        return;
    }
    m_text->display(layer->text);
    m_font->setCurrent(fontIndex(*layer));
    m_shape->display(*layer);
    m_place->display(photo, *layer);
    QList<Swatches::Entry> inks = {{packedColor(0x0D0D0D), said({"黑", "Black", "Noir"})},
                                   {packedColor(0x6E6D68), said({"灰", "Grey", "Gris"})},
                                   {packedColor(0xFFFFFF), said({"白", "White", "Blanc"})}};
    for (const Ink &ink :
         model().previews().palette.first(std::min<qsizetype>(2, model().previews().palette.size()))) {
        inks.append(
            {CompositionRenderer::opaque(ink), said({"照片主色", "Photo color", "Couleur de la photo"})});
    }
    m_ink->setEntries(inks);
    m_ink->setColor(CompositionRenderer::opaque(layer->ink));
    m_remove->setVisible(isOwn(m_id));
}

void TextSection::editText()
{
    refresh();
    m_text->setFocus(Qt::OtherFocusReason);
    m_text->selectAll();
}

void TextSection::addLayer()
{
    TextLayer layer;
    layer.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    layer.text = localized({"文字", "Text", "Texte"});
    layer.visible = true;
    layer.size = 0.034;
    edits().step([&layer](FrameSettings &settings) { settings.layers.append(layer); });
    state().selectLayer(layer.id);
    editText();
}

void TextSection::removeLayer()
{
    const std::optional<QString> &selected = state().selectedLayer();
    const QString id = selected ? *selected : m_id;
    if (!isOwn(id)) {
        return;
    }
    state().selectLayer({});
    edits().step([&id](FrameSettings &settings) {
        settings.layers.removeIf([&id](const TextLayer &layer) { return layer.id == id; });
    });
}

void TextSection::reset()
{
    edits().step([this](FrameSettings &settings) {
        TextLayer *layer = settings.layer(m_id);
        TextLayer fresh;
        for (const TextLayer &known : defaultLayers()) {
            if (known.id == m_id) {
                fresh = known;
            }
        }
        if (layer) {
            fresh.id = layer->id;
            fresh.text = layer->text;
            fresh.visible = layer->visible;
            *layer = fresh;
        }
    });
}

} // namespace tarnovel::app
