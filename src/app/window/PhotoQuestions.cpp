#include "app/window/PhotoQuestions.h"

#include "app/Wording.h"
#include "app/kit/Overlay.h"
#include "app/window/EditorPage.h"
#include "app/window/FilmStrip.h"
#include "app/window/ToolPanel.h"
#include "app/window/TopBar.h"
#include "language/Plural.h"

namespace tarnovel::app {

PhotoQuestions::PhotoQuestions(EditorModel &model, EditorState &state, const EditorPage &page)
    : m_model(model), m_state(state), m_page(page)
{
    connect(&state, &EditorState::saveStyleAsked, this, &PhotoQuestions::askStyleName);
    connect(&state, &EditorState::applyToAllAsked, this, &PhotoQuestions::applyToAll);
    connect(&state, &EditorState::removeAsked, this, &PhotoQuestions::askRemove);
}

void PhotoQuestions::askRemove()
{
    if (!m_model.current()) {
        return;
    }
    ask(m_page.strip()->removeButton(),
        {said({"移除这张照片", "Remove this photo", "Retirer cette photo"}),
         [] { return Wording::local(Confirmations::removePhoto()); }, said({"移除", "Remove", "Retirer"})},
        [this] { m_model.removeCurrent(); });
}

void PhotoQuestions::askStyleName()
{
    if (!m_model.current()) {
        return;
    }
    QWidget *anchor =
        m_page.exportShown() ? static_cast<QWidget *>(m_page.bar()) : m_page.panel()->saveStyleButton();
    askText(
        anchor,
        {.title = said({"保存我的风格", "Save my style", "Enregistrer mon style"}),
         .text = said({"画布、背景、边框和文字样式会一起保存。",
                       "Canvas, background, border and texts are kept together.",
                       "Format, fond, bordure et textes sont conservés ensemble."}),
         .fieldName = said({"风格名称", "Style name", "Nom du style"}),
         .confirm = said({"保存", "Save", "Enregistrer"})},
        [this](const QString &typed) {
            const QString name = typed.simplified().left(60);
            if (name.isEmpty()) {
                return localized({"请输入名称。", "Enter a name.", "Saisissez un nom."});
            }
            if (m_model.savePreset(name)) {
                m_state.say(localized({"风格已保存", "Style saved", "Style enregistré"}), Toast::Kind::Done);
            }
            return QString();
        });
}

void PhotoQuestions::applyToAll()
{
    if (!m_model.current()) {
        return;
    }
    m_model.applyToAll();
    m_state.say(
        counted(m_model.photos().size(), {"风格已应用。", "Style applied.", "Style appliqué."},
                {"风格已应用到 %1 张照片。", "Style applied to %1 photos.", "Style appliqué aux %1 photos."}),
        Toast::Kind::Done);
}

} // namespace tarnovel::app
