// Draws every screen of the editor, for looking at: light and dark, in three languages, in both reference
// sizes, into a folder.
//
//     build/release/tools/screens FOLDER [--only TEXT] PHOTO...
//
// QT_SCALE_FACTOR=2 draws them for screens of double pixels.

#include <cstdio>
#include <functional>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QStyleFactory>
#include <QTemporaryDir>

#include "app/canvas/CanvasView.h"
#include "app/collage/CollagePanel.h"
#include "app/collage/CollageScreen.h"
#include "app/export/ExportPanel.h"
#include "app/export/SuccessSheet.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/inspector/ColorDots.h"
#include "app/kit/Button.h"
#include "app/kit/ItemView.h"
#include "app/kit/Motion.h"
#include "app/kit/Overlay.h"
#include "app/kit/Theme.h"
#include "app/screens/ManagePhotos.h"
#include "app/window/DropVeil.h"
#include "app/window/EditorActions.h"
#include "app/window/EditorPage.h"
#include "app/window/FilmStrip.h"
#include "app/window/HomeScreen.h"
#include "collage/CollageStudio.h"
#include "handwriting/HandwritingFinish.h"
#include "handwriting/SignatureSave.h"
#include "model/Drafts.h"
#include "model/Signature.h"
#include "render/BuiltInTemplate.h"
#include "support/AppWorld.h"
#include "support/RecordedSignature.h"

namespace {

using namespace tarnovel;
using namespace tarnovel::app;
using namespace Qt::StringLiterals;

/// A library of its own, filled with the photos of the command line in different looks, as a finished set
/// has.
class World : public test::AppWorld {
public:
    World(const QStringList &photos, int count) : World(std::make_unique<QTemporaryDir>(), photos, count) {}

    /// The next start over a world whose document speaks of something that this version does not know.
    static std::unique_ptr<World> withSessionSetAside(const QStringList &photos, int count)
    {
        World before(photos, count);
        before.model().flush();
        std::unique_ptr<QTemporaryDir> folder = std::move(before.m_folder);
        QFile document(folder->filePath(u"library/session.json"_s));
        if (document.open(QIODevice::ReadWrite)) {
            const QByteArray newer =
                document.readAll().replace("\"style\":\"cinema\"", "\"style\":\"newer\"");
            document.resize(0);
            document.write(newer);
        }
        document.close();
        return std::unique_ptr<World>(new World(std::move(folder), {}, 0));
    }

private:
    World(std::unique_ptr<QTemporaryDir> folder, const QStringList &photos, int count)
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

    void dress()
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

    std::unique_ptr<QTemporaryDir> m_folder;
};

struct Screen {
    QString name;
    /// Brings the window into the state; what it returns takes it back.
    std::function<std::function<void()>(World &)> show;
};

/// Closes what lies over the window: one that was closed before may not be gone yet.
std::function<void()> closingSheets(World &world)
{
    return [&world] {
        for (Overlay *sheet : world.window().findChildren<Overlay *>()) {
            sheet->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
}

/// The recorded signature near the foot of the frame, and a ring for a logo above it.
FrameSettings signedAndMarked(World &world, FrameSettings settings)
{
    constexpr QSize page(1050, 1400);
    InkDrawing drawing;
    for (QList<InkSample> stroke : test::recordedSignature(TARNOVEL_SOURCE_DIR "/samples/signature.txt")) {
        for (InkSample &sample : stroke) {
            sample.position += QPointF(215, 1130);
        }
        drawing.append(
            std::make_shared<const DryStroke>(InkStroke{InkPen::signature, softBlack, 6, 1, stroke}));
    }
    finishedImage(drawing, {HandwritingFinish::color, softBlack}, page, 1)
        .save(world.model().libraryFolder() + u"/signature.png"_s);
    QImage ring(400, 400, QImage::Format_ARGB32_Premultiplied);
    ring.fill(Qt::transparent);
    QPainter painter(&ring);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 24));
    painter.drawEllipse(QPointF(200, 200), 180, 180);
    painter.drawLine(200, 20, 200, 380);
    painter.end();
    ring.save(world.model().libraryFolder() + u"/ring.png"_s);
    TextLayer &logo = *settings.layer(u"watermark"_s);
    logo.visible = true;
    logo.imageFile = u"ring.png"_s;
    logo.imageAspect = 1;
    logo.x = 0.85;
    logo.y = 0.9;
    return withSignature(settings, u"signature.png"_s, 0.75);
}

QList<Screen> signedScreens()
{
    QList<Screen> screens;
    for (const auto &[name, tool] :
         {std::pair("signed", std::optional(Tool::Signature)), {"signed-home", std::nullopt}}) {
        screens.append({QString::fromLatin1(name), [tool = tool](World &world) {
                            const FrameSettings before = world.model().current()->settings;
                            world.model().update(signedAndMarked(world, before));
                            if (tool) {
                                world.state().setTool(*tool);
                            } else {
                                world.window().page()->showHome();
                            }
                            return [&world, before] {
                                world.window().showEditor();
                                world.model().update(before);
                            };
                        }});
    }
    return screens;
}

QList<Screen> editorScreens()
{
    QList<Screen> screens;
    for (const ToolRow &row : toolRows) {
        screens.append({u"tool-"_s + QString::fromLatin1(row.id), [tool = row.tool](World &world) {
                            world.window().showEditor();
                            world.state().setTool(tool);
                            return [] {};
                        }});
    }
    screens.append(
        {u"film"_s, [](World &world) {
             world.state().setTool(Tool::Film);
             const QUuid before = *world.model().selected();
             world.model().select(
                 world.model().photos().at(std::min<qsizetype>(3, world.model().photos().size() - 1)).id);
             return [&world, before] { world.model().select(before); };
         }});
    screens.append({u"text-selected"_s, [](World &world) {
                        world.state().setTool(Tool::Text);
                        world.state().selectLayer(u"brand"_s);
                        return [&world] { world.state().selectLayer({}); };
                    }});
    screens.append({u"drawer"_s, [](World &world) {
                        world.state().setTool(Tool::Border);
                        world.window().page()->showDrawer(true);
                        return [&world] { world.window().page()->showDrawer(false); };
                    }});
    screens.append({u"placeholders"_s, [](World &world) {
                        world.state().setTool(Tool::Text);
                        const FrameSettings before = world.model().current()->settings;
                        FrameSettings empty = before;
                        for (const char *id : {"title", "caption"}) {
                            empty.layer(QString::fromLatin1(id))->text.clear();
                            empty.layer(QString::fromLatin1(id))->visible = true;
                        }
                        world.model().update(empty);
                        world.state().selectLayer(u"caption"_s);
                        return [&world, before] {
                            world.state().selectLayer({});
                            world.model().update(before);
                        };
                    }});
    screens.append({u"wide-frame"_s, [](World &world) {
                        const FrameSettings before = world.model().current()->settings;
                        FrameSettings wide = before;
                        wide.preset = CanvasPreset::custom;
                        wide.customWidth = 5;
                        wide.customHeight = 1;
                        world.state().setTool(Tool::Canvas);
                        world.model().update(wide);
                        return [&world, before] { world.model().update(before); };
                    }});
    screens.append({u"export"_s, [](World &world) {
                        world.window().page()->showExport(true);
                        return [&world] { world.window().page()->showExport(false); };
                    }});
    screens.append({u"success"_s, [](World &world) {
                        QList<QImage> thumbnails;
                        for (int i = 0; i < 4; ++i) {
                            thumbnails.append(
                                world.window().grab(QRect(200 + 40 * i, 100, 300, 400)).toImage());
                        }
                        showSuccess(&world.window(),
                                    {.heading = [] { return ExportTexts::exported(12); },
                                     .folder = QDir::homePath() + u"/Pictures/Autumn set"_s,
                                     .files = {u"/tmp/a.jpg"_s},
                                     .skipped = {},
                                     .hint = {},
                                     .thumbnails = [thumbnails] { return thumbnails; },
                                     .quote = PhotographyQuotes::all()[9]},
                                    [](const QString &) {});
                        return closingSheets(world);
                    }});
    screens.append({u"settings"_s, [](World &world) {
                        world.window().showSettings();
                        return closingSheets(world);
                    }});
    screens.append({u"manage"_s, [](World &world) {
                        world.window().showManage();
                        for (int i : {1, 3}) {
                            world.window().currentPage()->findChild<ManageGrid *>()->choose(i);
                        }
                        return [&world] { world.window().showEditor(); };
                    }});
    screens.append({u"preview"_s, [](World &world) {
                        world.window().showSetPreview();
                        return [&world] { world.window().showEditor(); };
                    }});
    screens.append({u"dragover"_s, [](World &world) {
                        auto *veil = world.window().findChild<DropVeil *>();
                        veil->setGeometry(world.window().page()->dropArea());
                        veil->offer(DropVeil::Offer::Photos, 8);
                        return [veil] { veil->hide(); };
                    }});
    screens.append({u"dragover-refused"_s, [](World &world) {
                        auto *veil = world.window().findChild<DropVeil *>();
                        veil->setGeometry(world.window().page()->dropArea());
                        veil->offer(DropVeil::Offer::Nothing, 0);
                        return [veil] { veil->hide(); };
                    }});
    screens.append({u"error"_s, [](World &world) {
                        world.state().say(localized({"2 个文件无法读取。", "2 files could not be read.",
                                                     "2 fichiers illisibles."}),
                                          Toast::Kind::Error);
                        return [&world] { world.window().toast()->hide(); };
                    }});
    screens.append({u"busy"_s, [](World &world) {
                        world.state().say(localized({"正在导入 ", "Importing ", "Importation "}) +
                                              u"7 / 12"_s,
                                          Toast::Kind::Busy);
                        return [&world] { world.window().toast()->endBusy(); };
                    }});
    screens.append({u"remove"_s, [](World &world) {
                        Q_EMIT world.state().removeAsked();
                        return closingSheets(world);
                    }});
    screens.append({u"save-style"_s, [](World &world) {
                        Q_EMIT world.state().saveStyleAsked();
                        return closingSheets(world);
                    }});
    screens.append({u"export-stopped"_s, [](World &world) {
                        const QString file = world.library() + u'/' + world.model().photos().last().file;
                        QFile::rename(file, file + u".away"_s);
                        world.answers().folder = QDir::tempPath();
                        world.window().page()->showExport(true);
                        ExportPanel *panel = world.window().page()->exporting();
                        panel->findChild<Button *>(u"startExport"_s)->click();
                        while (panel->working() && !panel->problem()) {
                            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
                        }
                        return [&world, panel, file] {
                            QFile::rename(file + u".away"_s, file);
                            panel->findChild<Button *>(u"stopExport"_s)->click();
                            world.window().page()->showExport(false);
                            closingSheets(world)();
                        };
                    }});
    screens.append({u"draft"_s, [](World &world) {
                        Drafts::keep(world.library(), Drafts::Kind::Collage, "{}");
                        world.window().offerDrafts();
                        return [&world] {
                            Drafts::remove(world.library(), Drafts::Kind::Collage);
                            for (Overlay *sheet : world.window().findChildren<Overlay *>()) {
                                sheet->close();
                            }
                        };
                    }});
    return screens;
}

/// Waits until the studio has its pictures.
void settleCollage(World &world)
{
    CollageStudio &studio = *world.window().collage()->studio();
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 10'000 && !studio.settled()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    world.settle();
}

/// A board of the session's first photos.
Screen board(const QString &name, int photos,
             const std::function<void(CollageStudio &, CollageScreen &)> &arrange)
{
    return {name, [photos, arrange](World &world) {
                world.window().showCollage();
                CollageScreen &screen = *world.window().collage();
                CollageStudio &studio = *screen.studio();
                studio.clearPicked();
                for (const PhotoItem &photo : world.model().photos().first(photos)) {
                    studio.toggle(photo.id);
                }
                studio.start();
                arrange(studio, screen);
                settleCollage(world);
                return [&world] { world.window().showEditor(); };
            }};
}

QList<Screen> collageScreens()
{
    return {{u"collage-chooser"_s,
             [](World &world) {
                 world.window().showCollage();
                 CollageStudio &studio = *world.window().collage()->studio();
                 studio.clearPicked();
                 for (const int index : {2, 0, 5}) {
                     studio.toggle(world.model().photos().at(index).id);
                 }
                 return [&world] { world.window().showEditor(); };
             }},
            board(u"collage-board"_s, 5, [](CollageStudio &studio, CollageScreen &) { studio.select(1); }),
            board(u"collage-page"_s, 9,
                  [](CollageStudio &, CollageScreen &screen) {
                      screen.panel()->showTab(CollagePanel::Tab::Page);
                  }),
            board(u"collage-filmstrip"_s, 4, [](CollageStudio &studio, CollageScreen &screen) {
                for (const CollagePreset &preset : studio.presets()) {
                    if (preset.film) {
                        studio.choosePreset(preset.id);
                    }
                }
                screen.panel()->showTab(CollagePanel::Tab::FilmEdge);
            })};
}

/// The recorded signature under the photo, as wide as half the page.
void sign(HandwritingController &studio)
{
    const QSizeF page = studio.viewport().reference();
    constexpr double recordedWidth = 620;
    const double scale = page.width() * 0.55 / recordedWidth;
    const QPointF corner(page.width() * 0.24, page.height() * 0.8);
    for (QList<InkSample> stroke : test::recordedSignature(TARNOVEL_SOURCE_DIR "/samples/signature.txt")) {
        for (InkSample &sample : stroke) {
            sample.position = corner + sample.position * scale;
        }
        studio.penDown(stroke.first());
        for (const InkSample &sample : stroke.sliced(1)) {
            studio.penMove(sample);
        }
        studio.penUp(stroke.last());
    }
}

/// The handwriting page lies over the window's own pages.
Screen handwriting(const QString &name, const std::function<void(HandwritingScreen &)> &prepare)
{
    return {u"handwriting-"_s + name, [prepare](World &world) {
                auto *screen = new HandwritingScreen(world.context());
                screen->setParent(&world.window());
                screen->setGeometry(world.window().rect());
                screen->show();
                screen->begin();
                prepare(*screen);
                return [screen, &world] {
                    for (Overlay *overlay : world.window().findChildren<Overlay *>()) {
                        overlay->close();
                    }
                    delete screen;
                };
            }};
}

QList<Screen> handwritingScreens()
{
    const auto finished = [](HandwritingFinish finish) {
        return [finish](HandwritingScreen &screen) {
            screen.studio()->setTool(HandwritingTool::Fountain);
            screen.studio()->setWidth(10);
            screen.studio()->setColor(inkSwatches().at(10).color);
            sign(*screen.studio());
            screen.studio()->setFinish(finish);
        };
    };
    QList<Screen> screens = {handwriting(u"empty"_s, [](HandwritingScreen &) {}),
                             handwriting(u"color"_s, finished(HandwritingFinish::color)),
                             handwriting(u"rainbow"_s, finished(HandwritingFinish::rainbow)),
                             handwriting(u"glitter"_s, finished(HandwritingFinish::glitter))};
    screens.append(handwriting(u"eraser"_s, [](HandwritingScreen &screen) {
        sign(*screen.studio());
        screen.studio()->setTool(HandwritingTool::Eraser);
    }));
    screens.append(handwriting(u"zoomed"_s, [](HandwritingScreen &screen) {
        sign(*screen.studio());
        screen.studio()->zoomTo(1.2, {200, 400});
        screen.studio()->setColor(inkSwatches().at(2).color);
    }));
    screens.append(handwriting(u"leave"_s, [](HandwritingScreen &screen) {
        sign(*screen.studio());
        screen.leave([] {});
    }));
    screens.append(handwriting(u"picker"_s, [](HandwritingScreen &screen) {
        auto *colors = screen.findChild<ColorDots *>();
        colors->choose(colors->count() - 1);
    }));
    return screens;
}

QList<Screen> homeScreens()
{
    return {{u"home"_s, [](World &world) {
                 world.window().page()->showHome();
                 return [] {};
             }}};
}

class Camera {
public:
    Camera(QString folder, QString only) : m_folder(std::move(folder)), m_only(std::move(only)) {}

    void take(World &world, const QList<Screen> &screens, const QString &kind)
    {
        static constexpr std::array languages = {"chinese", "english", "french"};
        for (const bool dark : {false, true}) {
            for (const char *language : languages) {
                for (const QSize size : sizes(dark, language)) {
                    setLanguageSources(
                        {[language] { return QString::fromLatin1(language); }, [] { return QStringList(); }});
                    applyTheme(dark);
                    world.window().retranslate();
                    world.window().setMinimumSize(size.boundedTo({900, 600}));
                    world.window().resize(size);
                    world.window().show();
                    for (const Screen &screen : screens) {
                        const QString name = u"%1-%2-%3-%4-%5.png"_s.arg(
                            kind, screen.name, QString::fromLatin1(language).left(2),
                            dark ? u"dark"_s : u"light"_s, QString::number(size.width()));
                        if (!name.contains(m_only)) {
                            continue;
                        }
                        const std::function<void()> back = screen.show(world);
                        world.settle();
                        world.window().grab().save(m_folder + u'/' + name);
                        back();
                        ++m_taken;
                    }
                }
            }
        }
    }

    int taken() const { return m_taken; }

private:
    /// The design's two sizes in every look; the smallest and the largest where words are longest.
    static QList<QSize> sizes(bool dark, const char *language)
    {
        QList<QSize> list = {QSize(1100, 720), QSize(1440, 920)};
        if (!dark && qstrcmp(language, "french") == 0) {
            list += {QSize(900, 600), QSize(2560, 1400)};
        }
        return list;
    }

    QString m_folder;
    QString m_only;
    int m_taken = 0;
};

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    const QApplication application(argc, argv);
    QApplication::setFont(typeFont(Type::Body));
    QCommandLineParser parser;
    const QCommandLineOption only(u"only"_s, u"Only pictures whose names contain TEXT."_s, u"TEXT"_s);
    parser.addOption(only);
    parser.process(application);
    QStringList arguments = parser.positionalArguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "screens FOLDER PHOTO...\n");
        return 2;
    }
    const QString folder = arguments.takeFirst();
    QDir().mkpath(folder);
    Motion::setReduced(true);
    Camera camera(folder, parser.value(only));
    World empty(arguments, 0);
    const std::unique_ptr<World> kept = World::withSessionSetAside(arguments, 12);
    camera.take(*kept, homeScreens(), u"kept"_s);
    camera.take(empty, homeScreens(), u"empty"_s);
    World full(arguments, 12);
    camera.take(full, homeScreens(), u"twelve"_s);
    full.window().showEditor();
    camera.take(full, editorScreens() + signedScreens() + collageScreens() + handwritingScreens(),
                u"twelve"_s);
    World one(arguments, 1);
    one.window().showEditor();
    camera.take(one, {editorScreens().first()}, u"one"_s);
    World fifty(arguments, 50);
    fifty.window().showEditor();
    QList<Screen> crowded = editorScreens();
    crowded.removeIf([](const Screen &screen) {
        return !QStringList{u"tool-templates"_s, u"manage"_s, u"preview"_s}.contains(screen.name);
    });
    camera.take(fifty, crowded, u"fifty"_s);
    std::printf("%d pictures\n", camera.taken());
    return 0;
}
