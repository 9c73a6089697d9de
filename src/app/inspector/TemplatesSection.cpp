#include "app/inspector/TemplatesSection.h"

#include <QBoxLayout>

#include "app/kit/CardGrid.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr QSize tile(80, 96);
constexpr int columns = 3;

} // namespace

TemplatesSection::TemplatesSection(const EditorContext &context) : Section(context)
{
    m_grid = new CardGrid(
        {.count = [] { return static_cast<int>(BuiltInTemplates::all().size()); },
         .name = [](int index) { return BuiltInTemplates::title(BuiltInTemplates::all().at(index)); },
         .image = [this](int index, QSize room) { return card(index, room); },
         .chosen =
             [this](int index) {
                 return model().activeTemplateID() == BuiltInTemplates::id(BuiltInTemplates::all().at(index));
             }},
        tile, columns);
    m_grid->setName(said({"模板", "Templates", "Modèles"}));
    column()->addWidget(m_grid);
    connect(m_grid, &Items::chosen, this, [this](int index) {
        edits().step([this, index](FrameSettings &settings) {
            settings = BuiltInTemplates::make(BuiltInTemplates::all().at(index), settings,
                                              model().previews().palette);
        });
    });
    connect(&context.thumbnails, &Thumbnails::ready, this, [this](const QString &key) {
        if (key.startsWith(u"template "_s)) {
            m_grid->update();
        }
    });
}

QImage TemplatesSection::card(int index, QSize roomPx) const
{
    const PhotoItem *photo = model().current();
    if (!photo) {
        return {};
    }
    const BuiltInTemplate look = BuiltInTemplates::all().at(index);
    PhotoItem dressed = *photo;
    dressed.settings = BuiltInTemplates::make(look, photo->settings, model().previews().palette);
    return context().thumbnails.image(u"template "_s + BuiltInTemplates::id(look), dressed, roomPx);
}

void TemplatesSection::display(const PhotoItem &)
{
    m_grid->update();
}

} // namespace tarnovel
