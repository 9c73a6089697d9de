#include "app/canvas/TextPopover.h"

#include <QBoxLayout>

#include "app/inspector/ColorDots.h"
#include "app/inspector/Section.h"
#include "app/inspector/TextSection.h"
#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Overlay.h"
#include "app/kit/Segments.h"
#include "app/kit/Theme.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int cardWidth = 320;
constexpr int padding = 12;

/// The row of colours, with the eye that hides the text.
QHBoxLayout *colorRow(Overlay *card, const EditorContext &context, const TextLayer &layer)
{
    SettingsEdits &edits = context.edits;
    auto *dots = new ColorDots(context.state, {{packedColor(0x0D0D0D), said({"黑", "Black", "Noir"})},
                                               {packedColor(0x6E6D68), said({"灰", "Grey", "Gris"})},
                                               {packedColor(0xFFFFFF), said({"白", "White", "Blanc"})}});
    dots->setName(said({"文字颜色", "Text color", "Couleur du texte"}));
    dots->setColor(CompositionRenderer::opaque(layer.ink));
    auto *hide = new Button(Button::Kind::Ghost, said({"隐藏文字", "Hide text", "Masquer le texte"}), "eye",
                            Button::Face::IconOnly);
    hide->setHeight(28);
    hide->setIconSizePx(16);
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(dots, 1);
    row->addWidget(hide);
    QObject::connect(dots, &ColorDots::chosenColor, card, [&edits, dots, id = layer.id](const QColor &color) {
        edits.step(inLayer(id, [&](TextLayer &changed) { changed.ink = inkOf(color); }));
        dots->setColor(color);
    });
    QObject::connect(dots, &ColorDots::dragged, card, [&edits, id = layer.id](const QColor &color) {
        edits.adjust(u"ink "_s + id, inLayer(id, [&](TextLayer &changed) { changed.ink = inkOf(color); }));
    });
    QObject::connect(hide, &QPushButton::clicked, card, [&edits, card, id = layer.id] {
        edits.step(inLayer(id, [](TextLayer &changed) { changed.visible = false; }));
        card->close();
    });
    return row;
}

} // namespace

Overlay *editTextOnCanvas(QWidget *window, const EditorContext &context, const QString &layerId,
                          QPoint inWindow)
{
    const PhotoItem *photo = context.model.current();
    const TextLayer *found = photo ? photo->settings.layer(layerId) : nullptr;
    if (!found || found->imageFile) {
        return nullptr;
    }
    const TextLayer layer = *found;
    SettingsEdits &edits = context.edits;
    auto *card =
        new Overlay(Overlay::Kind::Popover, window, said({"编辑文字", "Edit text", "Modifier le texte"}));
    card->column()->setContentsMargins(padding, padding, padding, padding);
    card->column()->setSpacing(12);
    auto *text = new Field(said({"内容", "Text", "Contenu"}));
    text->setText(layer.text);
    text->selectAll();
    auto *font = makeFontSegments();
    font->setCurrent(fontIndex(layer));
    card->column()->addWidget(text);
    card->column()->addWidget(font);
    card->column()->addLayout(colorRow(card, context, layer));
    QObject::connect(text, &QLineEdit::textEdited, card, [&edits, layerId](const QString &words) {
        edits.adjust(u"text "_s + layerId,
                     inLayer(layerId, [&](TextLayer &changed) { changed.text = words; }));
    });
    QObject::connect(text, &QLineEdit::returnPressed, card, &Overlay::close);
    QObject::connect(font, &ItemView::chosen, card, [&edits, layerId](int index) {
        edits.step(inLayer(layerId, [&](TextLayer &changed) { changed.fontStyle = fontAt(index); }));
    });
    QObject::connect(card, &Overlay::closed, card, [&edits] { edits.endAdjusting(); });
    // The editor goes with its text.
    QObject::connect(&context.model, &EditorModel::changed, card,
                     [card, &model = context.model, photoId = photo->id, layerId] {
                         const PhotoItem *now = model.current();
                         if (!now || now->id != photoId || !now->settings.layer(layerId)) {
                             card->close();
                         }
                     });
    card->setCardSize({cardWidth, 0});
    card->anchorAt(inWindow);
    card->open();
    return card;
}

} // namespace tarnovel::app
