#include "app/inspector/StylesSection.h"

#include <QBoxLayout>

#include "app/canvas/CanvasMarks.h"
#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/Switch.h"
#include "model/Styling.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize tile(80, 96);
constexpr int columns = 3;

/// What a record that came from the style remembers of it.
QString styleId(const SavedPreset &preset)
{
    return u"preset-"_s + preset.id.toString(QUuid::WithoutBraces).toUpper();
}

} // namespace

StylesSection::StylesSection(const EditingContext &context, Preferences &preferences, Thumbnails &thumbnails)
    : Section(context), m_preferences(preferences), m_thumbnails(thumbnails)
{
    auto *save = new Button(Button::Kind::Secondary,
                            said({"保存我的风格", "Save my style", "Enregistrer mon style"}), "styles");
    save->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(save, &QPushButton::clicked, &context.state, &EditorState::saveStyleAsked);
    column()->addWidget(save);
    save->setObjectName(u"savePreset"_s);
    column()->addSpacing(16);
    m_grid = new CardGrid({.count = [this] { return static_cast<int>(model().presets().size()); },
                           .name = [this](int index) { return model().presets().at(index).name; },
                           .image = [this](int index, QSize room) { return card(index, room); },
                           .chosen =
                               [this](int index) {
                                   return model().activeTemplateID() == styleId(model().presets().at(index));
                               }},
                          tile, columns);
    m_grid->setName(said({"我的风格", "My styles", "Mes styles"}));
    column()->addWidget(m_grid);
    m_grid->setObjectName(u"styles"_s);
    m_empty = makeHint("info", said({"还没有保存的风格。调好一张照片，然后保存。",
                                     "No saved styles yet. Frame a photo as you like it, then save.",
                                     "Aucun style enregistré. Réglez une photo, puis enregistrez."}));
    column()->addWidget(m_empty);
    addRule();
    m_deleteHint = makeHint("info", said({"长按风格卡片可删除。", "Long-press a style card to delete it.",
                                          "Appuyez longuement sur une carte de style pour la supprimer."}));
    column()->addWidget(m_deleteHint);
    column()->addSpacing(8);
    m_keepTexts = new Switch(said({"保留每张照片的相机文字", "Keep each photo’s camera texts",
                                   "Garder les textes d’appareil de chaque photo"}));
    m_keepTexts->setObjectName(u"keepCameraTexts"_s);
    column()->addWidget(m_keepTexts);
    connect(m_keepTexts, &Switch::toggledByUser, this, [this](bool on) {
        m_preferences.set(PreferenceKeys::keepCameraTexts, on);
        m_grid->reload();
    });
    m_autoApply = new Switch(said({"新照片使用上次的风格", "Apply last style to new photos",
                                   "Appliquer le dernier style aux nouvelles photos"}));
    column()->addWidget(m_autoApply);
    m_autoApply->setObjectName(u"autoApply"_s);
    connect(m_autoApply, &Switch::toggledByUser, &context.model, &EditorModel::setAutoApplyLastStyle);
    connect(m_grid, &ItemView::chosen, this, [this](int index) {
        SavedPreset preset = model().presets().at(index);
        if (const PhotoItem *photo = model().current()) {
            preset.settings = applied(preset, *photo);
        }
        // So that the card stays marked while the photo is refined.
        preset.settings.templateID = styleId(preset);
        model().applyPreset(preset);
    });
    connect(m_grid, &ItemView::menuRequested, this, &StylesSection::askDelete);
    connect(&thumbnails, &Thumbnails::ready, this, [this](const ThumbnailKey &key) {
        if (key.of == ThumbnailKey::Of::Style) {
            m_grid->update();
        }
    });
}

void StylesSection::askDelete(int index)
{
    const SavedPreset preset = model().presets().at(index);
    const Phrase title = [name = preset.name] {
        return localized({"删除“", "Delete “", "Supprimer « "}) + name + localized({"”？", "”?", " » ?"});
    };
    Overlay *overlay =
        ask(m_grid,
            {title,
             said({"使用此风格的照片保持不变。", "Photos that use this style stay as they are.",
                   "Les photos qui l’utilisent ne changent pas."}),
             said({"删除", "Delete", "Supprimer"})},
            [this, id = preset.id] { model().deletePreset(id); });
    overlay->anchorAt(m_grid->mapTo(window(), m_grid->itemRect(index).bottomRight()));
    overlay->open();
}

QImage StylesSection::card(int index, QSize roomPx) const
{
    const PhotoItem *photo = model().current();
    if (!photo) {
        return {};
    }
    const SavedPreset &preset = model().presets().at(index);
    PhotoItem shown = *photo;
    shown.settings = applied(preset, *photo);
    return CanvasMarks::withPlaceholders(
        m_thumbnails.image({ThumbnailKey::Of::Style, preset.id.toString()}, shown, roomPx), shown.settings,
        devicePixelRatioF());
}

FrameSettings StylesSection::applied(const SavedPreset &preset, const PhotoItem &photo) const
{
    if (m_preferences.get(PreferenceKeys::keepCameraTexts)) {
        return styled(photo, preset.settings, 0).settings;
    }
    FrameSettings settings = preset.settings;
    settings.normalize();
    return settings;
}

void StylesSection::display(const PhotoItem &)
{
    const bool none = model().presets().isEmpty();
    m_grid->setVisible(!none);
    m_deleteHint->setVisible(!none);
    m_empty->setVisible(none);
    m_grid->reload();
    m_keepTexts->setVisible(!none);
    m_keepTexts->show(m_preferences.get(PreferenceKeys::keepCameraTexts));
    // The keyboard begins at the style that was used last.
    const SavedPreset *preferred = model().preferredPreset();
    if (preferred && m_grid->cursor() < 0) {
        m_grid->setCursorItem(static_cast<int>(preferred - model().presets().constData()));
    }
    m_autoApply->show(model().autoApplyLastStyle());
}

} // namespace tarnovel::app
