#include "screens/Screen.h"

#include <QApplication>
#include <QFile>

#include "app/kit/Overlay.h"
#include "app/window/EditorPage.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel::screens {

using namespace app;

std::unique_ptr<World> World::withSessionSetAside(const QStringList &photos, int count)
{
    World before(photos, count);
    before.model().flush();
    std::unique_ptr<QTemporaryDir> folder = std::move(before.m_folder);
    QFile document(folder->filePath(u"library/session.json"_s));
    if (document.open(QIODevice::ReadWrite)) {
        const QByteArray newer = document.readAll().replace("\"style\":\"cinema\"", "\"style\":\"newer\"");
        document.resize(0);
        document.write(newer);
    }
    document.close();
    return std::unique_ptr<World>(new World(std::move(folder), {}, 0));
}

World::World(std::unique_ptr<QTemporaryDir> folder, const QStringList &photos, int count)
    : AppWorld(folder->path()), m_folder(std::move(folder))
{
    preferences().set(PreferenceKeys::autoApplyLastStyle, false);
    QStringList wanted;
    for (int i = 0; i < count; ++i) {
        wanted.append(photos.at(i % photos.size()));
    }
    if (count > 0) {
        import(wanted);
        dress();
    }
}

void World::dress()
{
    const QList<BuiltInTemplate> looks = {BuiltInTemplate::plain,   BuiltInTemplate::gear,
                                          BuiltInTemplate::tone,    BuiltInTemplate::film,
                                          BuiltInTemplate::gallery, BuiltInTemplate::instant,
                                          BuiltInTemplate::cinema,  BuiltInTemplate::caption};
    const QList<PhotoItem> photos = model().photos();
    for (qsizetype i = 0; i < photos.size(); ++i) {
        model().select(photos.at(i).id);
        FrameSettings settings = photos.at(i).settings;
        settings.layer(u"title"_s)->text = u"White wall"_s;
        settings.layer(u"caption"_s)->text = u"Oia, 2024"_s;
        settings = BuiltInTemplates::make(looks.at(i % looks.size()), settings, {{0.85, 0.63, 0.5}});
        model().update(settings);
    }
    for (const char *name : {"Warm paper", "Night notebook", "High margin"}) {
        model().savePreset(QString::fromLatin1(name));
    }
    model().select(photos.at(std::min<qsizetype>(1, photos.size() - 1)).id);
    settle();
}

std::function<void()> closingSheets(World &world)
{
    return [&world] {
        for (Overlay *sheet : world.window().findChildren<Overlay *>()) {
            sheet->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
}

} // namespace tarnovel::screens
