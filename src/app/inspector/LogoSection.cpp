#include "app/inspector/LogoSection.h"

#include <QBoxLayout>

#include "app/inspector/EmptyState.h"
#include "app/inspector/LayerControls.h"
#include "app/inspector/PictureWell.h"
#include "app/kit/Button.h"
#include "app/kit/Switch.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

LogoSection::LogoSection(const EditorContext &context) : Section(context)
{
    m_well = new PictureWell;
    column()->addWidget(m_well);
    auto *first = new Button(Button::Kind::Secondary,
                             said({"选择图片…", "Choose image…", "Choisir une image…"}), "image");
    first->setObjectName(u"chooseLogo"_s);
    m_empty = new EmptyState("logo", said({"还没有徽标", "No logo yet", "Pas encore de logo"}),
                             said({"PNG 透明背景效果最好。", "A PNG with a transparent ground looks best.",
                                   "Un PNG à fond transparent convient le mieux."}),
                             first);
    column()->addWidget(m_empty);
    m_change = new QWidget;
    auto *row = new QHBoxLayout(m_change);
    row->setContentsMargins(0, 12, 0, 0);
    row->setSpacing(8);
    m_choose = new Button(Button::Kind::Secondary,
                          said({"更换图片…", "Replace image…", "Remplacer l’image…"}), "image");
    m_choose->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_remove = new Button(Button::Kind::Secondary, said({"移除徽标", "Remove logo", "Retirer le logo"}),
                          "trash", Button::Face::IconOnly);
    row->addWidget(m_choose, 1);
    row->addWidget(m_remove);
    column()->addWidget(m_change);
    m_controls = new QWidget;
    auto *controls = new QVBoxLayout(m_controls);
    controls->setContentsMargins(0, 12, 0, 0);
    controls->setSpacing(4);
    controls->addWidget(makeRule());
    m_visible = new Switch(said({"显示徽标", "Show logo", "Afficher le logo"}));
    controls->addWidget(m_visible);
    m_shape = new LayerShape(context);
    controls->addWidget(m_shape);
    controls->addWidget(makeRule());
    m_place = new LayerPlace(context);
    controls->addWidget(m_place);
    column()->addWidget(m_controls);
    m_choose->setObjectName(u"chooseLogo"_s);
    m_remove->setObjectName(u"removeLogo"_s);
    m_visible->setObjectName(u"showLogo"_s);
    for (const Button *button : {first, m_choose}) {
        connect(button, &QPushButton::clicked, &context.state, &EditorState::logoAsked);
    }
    connect(m_remove, &QPushButton::clicked, this, [this] {
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
    m_well->setVisible(present);
    m_empty->setVisible(!present);
    m_change->setVisible(present);
    m_controls->setVisible(present);
    if (present) {
        m_well->setPicture(model().previews().logo);
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
