#include "app/inspector/LogoSection.h"

#include <QBoxLayout>

#include "app/inspector/LayerControls.h"
#include "app/inspector/PictureHolder.h"
#include "app/inspector/PictureWell.h"
#include "app/kit/Switch.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

LogoSection::LogoSection(const EditingContext &context) : Section(context)
{
    m_holder = new PictureHolder(
        {.icon = "logo",
         .heading = said({"还没有徽标", "No logo yet", "Pas encore de logo"}),
         .text = said({"PNG 透明背景效果最好。", "A PNG with a transparent ground looks best.",
                       "Un PNG à fond transparent convient le mieux."}),
         .chooseIcon = "image",
         .choose = said({"选择图片…", "Choose image…", "Choisir une image…"}),
         .replace = said({"更换图片…", "Replace image…", "Remplacer l’image…"}),
         .remove = said({"移除徽标", "Remove logo", "Retirer le logo"}),
         .chooseName = u"chooseLogo"_s,
         .removeName = u"removeLogo"_s});
    column()->addWidget(m_holder);
    QVBoxLayout *controls = m_holder->controls();
    controls->setSpacing(4);
    m_visible = new Switch(said({"显示徽标", "Show logo", "Afficher le logo"}));
    controls->addWidget(m_visible);
    m_shape = new LayerShape(context.edits);
    controls->addWidget(m_shape);
    controls->addWidget(makeRule());
    m_place = new LayerPlace(context.model, context.edits);
    controls->addWidget(m_place);
    m_visible->setObjectName(u"showLogo"_s);
    connect(m_holder, &PictureHolder::chooseAsked, &context.state, &EditorState::logoAsked);
    connect(m_holder, &PictureHolder::removeAsked, this, [this] {
        edits().step(inLayer(logoLayer, [](TextLayer &logo) {
            logo.imageFile.reset();
            logo.imageAspect.reset();
            logo.visible = false;
        }));
    });
    connect(m_visible, &Switch::toggledByUser, this, [this](bool on) {
        edits().step(inLayer(logoLayer, [on](TextLayer &logo) { logo.visible = on; }));
    });
}

void LogoSection::display(const PhotoItem &photo)
{
    const TextLayer *logo = photo.settings.layer(logoLayer);
    const bool present = logo && logo->imageFile;
    m_holder->setPresent(present);
    if (present) {
        m_holder->well()->setPicture(model().previews().logo);
        m_visible->show(logo->visible);
        m_shape->display(*logo);
        m_place->display(photo, *logo);
    }
}

void LogoSection::reset()
{
    edits().step([](FrameSettings &settings) {
        TextLayer *logo = settings.layer(logoLayer);
        for (const TextLayer &fresh : defaultLayers()) {
            if (logo && fresh.id == logoLayer) {
                logo->x = fresh.x;
                logo->y = fresh.y;
                logo->size = fresh.size;
                logo->rotation = fresh.rotation;
            }
        }
    });
}

} // namespace tarnovel::app
