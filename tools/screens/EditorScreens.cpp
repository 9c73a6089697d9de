#include <QApplication>
#include <QDir>
#include <QPainter>

#include "app/canvas/CanvasView.h"
#include "app/export/ExportPanel.h"
#include "app/export/SuccessSheet.h"
#include "app/kit/Button.h"
#include "app/kit/ItemView.h"
#include "app/kit/Overlay.h"
#include "app/screens/ManagePhotos.h"
#include "app/window/DropVeil.h"
#include "app/window/EditorActions.h"
#include "app/window/EditorPage.h"
#include "app/window/FilmStrip.h"
#include "app/window/HomeScreen.h"
#include "handwriting/HandwritingController.h"
#include "handwriting/HandwritingFinish.h"
#include "handwriting/SignatureSave.h"
#include "model/Drafts.h"
#include "model/Signature.h"
#include "screens/Screen.h"
#include "support/RecordedSignature.h"

using namespace Qt::StringLiterals;

namespace tarnovel::screens {

using namespace app;

namespace {

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

} // namespace

QList<Screen> homeScreens()
{
    return {{u"home"_s, [](World &world) {
                 world.window().page()->showHome();
                 return [] {};
             }}};
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

} // namespace tarnovel::screens
