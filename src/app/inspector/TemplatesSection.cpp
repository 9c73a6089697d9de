#include "app/inspector/TemplatesSection.h"

#include <algorithm>

#include <QBoxLayout>

#include "app/canvas/CanvasMarks.h"
#include "app/kit/CardGrid.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize tile(80, 96);
constexpr int columns = 3;

ThumbnailKey templateKey(BuiltInTemplate look)
{
    return {ThumbnailKey::Of::Template, BuiltInTemplates::id(look)};
}

} // namespace

TemplatesSection::TemplatesSection(const EditingContext &context, Thumbnails &thumbnails)
    : Section(context), m_thumbnails(thumbnails)
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
    m_grid->setObjectName(u"templates"_s);
    connect(m_grid, &ItemView::chosen, this, [this](int index) {
        edits().step([this, index](FrameSettings &settings) {
            settings = BuiltInTemplates::make(BuiltInTemplates::all().at(index), settings,
                                              model().previews().palette);
        });
    });
    connect(&thumbnails, &Thumbnails::ready, this, [this](const ThumbnailKey &key) {
        const QList<BuiltInTemplate> &looks = BuiltInTemplates::all();
        for (int i = 0; i < looks.size(); ++i) {
            if (key == templateKey(looks.at(i))) {
                m_grid->update(m_grid->itemRect(i));
            }
        }
    });
}

QImage TemplatesSection::card(int index, QSize roomPx) const
{
    const PhotoItem *photo = model().current();
    if (!photo) {
        return {};
    }
    const PhotoItem item = dressed(*photo, index);
    return CanvasMarks::withPlaceholders(thumbnail(item, index, roomPx), item.settings, devicePixelRatioF());
}

PhotoItem TemplatesSection::dressed(PhotoItem photo, int index) const
{
    photo.settings =
        BuiltInTemplates::make(BuiltInTemplates::all().at(index), photo.settings, model().previews().palette);
    return photo;
}

QImage TemplatesSection::thumbnail(const PhotoItem &dressed, int index, QSize roomPx) const
{
    return m_thumbnails.image(templateKey(BuiltInTemplates::all().at(index)), dressed, roomPx);
}

void TemplatesSection::display(const PhotoItem &photo)
{
    // Dragging the photo changes no card: only those that do change are drawn and painted anew.
    const std::optional<QString> active = model().activeTemplateID();
    if (m_photo != photo.id || m_active != active) {
        m_photo = photo.id;
        m_active = active;
        // The keyboard's place in the list is the template of the photo.
        const QList<BuiltInTemplate> &looks = BuiltInTemplates::all();
        const auto place = std::ranges::find_if(
            looks, [&active](BuiltInTemplate look) { return active == BuiltInTemplates::id(look); });
        m_grid->setCurrent(place == looks.end() ? -1 : static_cast<int>(place - looks.begin()));
        m_grid->update();
        return;
    }
    const QSize room = m_grid->imageRoomPx();
    for (int i = 0; i < m_grid->count(); ++i) {
        if (m_grid->itemRect(i).intersects(m_grid->visibleRegion().boundingRect())) {
            thumbnail(dressed(photo, i), i, room);
        }
    }
}

} // namespace tarnovel::app
