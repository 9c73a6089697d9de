// The controls of texts, pictures and styles, and what all controls have in common.

#include <QSignalSpy>

#include "app/Controls.h"
#include "app/inspector/StockPicker.h"
#include "app/kit/Button.h"
#include "app/kit/ColorPicker.h"
#include "app/kit/Overlay.h"
#include "app/kit/Switch.h"
#include "render/BuiltInTemplate.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

TEST_F(Controls, Text)
{
    const auto title = [](auto proof) {
        return [proof](const FrameSettings &now) { return proof(*now.layer(u"title"_s)); };
    };
    play(Tool::Text,
         [](FrameSettings &settings) {
             settings.layer(u"title"_s)->text = u"Dawn"_s;
             settings.layer(u"title"_s)->visible = true;
         },
         {{"an eye",
           [&] {
               auto *list = control<ItemView>(u"layers"_s);
               click(list, QPoint(list->width() - 12, list->itemRect(0).center().y()));
           },
           title([](auto &layer) { return !layer.visible; })},
          {"a word", [&] { enter(u"text"_s, u"Dusk"_s); },
           title([](auto &layer) { return layer.text == u"Dusk"_s && layer.visible; })},
          {"a face", [&] { clickItem(u"font"_s, 3); },
           title([](auto &layer) { return layer.fontStyle == u"mono"_s; })},
          {"a size", [&] { enter(u"layerSize"_s, u"5"_s); },
           title([](auto &layer) { return near(layer.size, 0.05); })},
          {"a turn", [&] { enter(u"layerRotation"_s, u"-90"_s); },
           title([](auto &layer) { return layer.rotation == -90.0; })},
          {"a color", [&] { clickItem(u"ink"_s, 2); },
           title([](auto &layer) { return isInk(layer.ink, 0xFFFFFFFF); })},
          {"a corner", [&] { clickItem(u"pad"_s, 8); },
           title([](auto &layer) { return layer.x > 0.7 && layer.y > 0.7; })},
          {"across", [&] { enter(u"layerX"_s, u"30"_s); },
           title([](auto &layer) { return near(layer.x, 0.3); })},
          {"down, held to the canvas", [&] { enter(u"layerY"_s, u"120"_s); },
           title([](auto &layer) { return near(layer.y, 0.98); })},
          {"a text of one's own",
           [&] {
               click(control(u"addText"_s));
               page().canvas()->setFocus();
           },
           [](auto &now) { return now.layers.size() == defaultLayers().size() + 1; }}});
    play(Tool::Text,
         [](FrameSettings &settings) {
             TextLayer own;
             own.id = u"own"_s;
             own.text = u"mine"_s;
             own.visible = true;
             settings.layers.append(own);
         },
         {{"remove a text of one's own",
           [&] {
               window().state().selectLayer(u"own"_s);
               click(control(u"removeText"_s));
           },
           [](auto &now) { return !now.layer(u"own"_s); }}});
}

TEST_F(Controls, LogoAndSignature)
{
    QImage mark(60, 30, QImage::Format_ARGB32);
    mark.fill(Qt::black);
    ASSERT_TRUE(mark.save(m_world->library() + u"/mark.png"_s));
    const auto logo = [](auto proof) {
        return [proof](const FrameSettings &now) { return proof(*now.layer(u"watermark"_s)); };
    };
    play(Tool::Logo,
         [](FrameSettings &settings) {
             TextLayer &layer = *settings.layer(u"watermark"_s);
             layer.imageFile = u"mark.png"_s;
             layer.imageAspect = 2;
             layer.visible = true;
         },
         {{"hide it", [&] { click(control(u"showLogo"_s)); },
           logo([](auto &layer) { return !layer.visible && layer.imageFile; })},
          {"a size", [&] { enter(u"layerSize"_s, u"8"_s); },
           logo([](auto &layer) { return near(layer.size, 0.08); })},
          {"a corner", [&] { clickItem(u"pad"_s, 0); },
           logo([](auto &layer) { return layer.x < 0.3 && layer.y < 0.3; })},
          {"remove it", [&] { click(control(u"removeLogo"_s)); },
           logo([](auto &layer) { return !layer.imageFile && !layer.imageAspect && !layer.visible; })}});
    play(Tool::Signature,
         [](FrameSettings &settings) {
             settings.handwritingFile = u"mark.png"_s;
             settings.handwritingAspect = 2;
         },
         {{"a size", [&] { enter(u"signatureSize"_s, u"50"_s); },
           [](auto &now) { return near(now.handwritingWidth.value_or(0), 0.5); }},
          {"across", [&] { enter(u"signatureX"_s, u"20"_s); },
           [](auto &now) { return near(now.handwritingX.value_or(0), 0.2) && !now.handwritingY; }},
          {"down", [&] { enter(u"signatureY"_s, u"30"_s); },
           [](auto &now) { return near(now.handwritingY.value_or(0), 0.3) && !now.handwritingX; }},
          {"remove it", [&] { click(control(u"removeSignature"_s)); },
           [](auto &now) { return !now.handwritingFile && !now.handwritingAspect; }}});
}

TEST_F(Controls, Camera)
{
    for (const char *name : {"brand", "model", "exif", "date"}) {
        const QString id = QString::fromLatin1(name);
        const Change given = [id](FrameSettings &settings) {
            settings.layer(id)->text = u"before"_s;
            settings.layer(id)->visible = false;
        };
        play(Tool::Camera, given,
             {{"show it", [&] { click(control(id + u"Shown"_s)); },
               [id](auto &now) { return now.layer(id)->visible; }},
              {"type it", [&] { enter(id + u"Text"_s, u"after"_s); },
               [id](auto &now) { return now.layer(id)->text == u"after"_s; }}});
    }
    // A date that is entered is a date that one wants to see.
    play(Tool::Camera, [](FrameSettings &settings) { settings.layer(u"date"_s)->text.clear(); },
         {{"enter the date",
           [&] {
               click(control(u"enterDate"_s));
               type(u"2026.09.22"_s);
               press(Qt::Key_Return);
           },
           [](auto &now) {
               return now.layer(u"date"_s)->text == u"2026.09.22"_s && now.layer(u"date"_s)->visible;
           }}});
}

TEST_F(Controls, TemplatesAndStyles)
{
    play(Tool::Templates, [](FrameSettings &) {},
         {{"a template", [&] { clickItem(u"templates"_s, 1); },
           [](auto &now) {
               return now.templateID &&
                      *now.templateID == BuiltInTemplates::id(BuiltInTemplates::all().at(1));
           }}});
    FrameSettings kept = settings();
    kept.border = 0.031;
    model().update(kept);
    ASSERT_TRUE(model().savePreset(u"Mine"_s));
    play(Tool::Styles, [](FrameSettings &) {},
         {{"a saved style", [&] { clickItem(u"styles"_s, 0); },
           [](auto &now) { return near(now.border, 0.031); }}});
    const bool before = model().autoApplyLastStyle();
    click(control(u"autoApply"_s));
    EXPECT_NE(model().autoApplyLastStyle(), before);
    // Delete asks; Esc keeps the style, the button removes it.
    auto *grid = control<ItemView>(u"styles"_s);
    grid->setFocus();
    press(Qt::Key_Delete);
    press(Qt::Key_Escape);
    EXPECT_EQ(model().presets().size(), 1);
    EXPECT_EQ(QApplication::focusWidget(), grid);
    press(Qt::Key_Delete);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_TRUE(model().presets().isEmpty());
}

TEST_F(Controls, EverySectionCanBeReset)
{
    const FrameSettings fresh;
    const Change changed = [&](FrameSettings &settings) {
        settings.preset = CanvasPreset::custom;
        settings.customWidth = 7;
        settings.background = Backdrop::gradient;
        settings.color = settings.secondColor = {0.2, 0.3, 0.4};
        settings.border = 0.03;
        settings.borderColor = {1, 0, 0};
        settings.style = FrameStyle::film;
        settings.film = FilmOptions();
        settings.film->number = 9;
        settings.handwritingFile = settings.layer(u"watermark"_s)->imageFile = u"mark.png"_s;
        settings.handwritingX = settings.handwritingY = settings.handwritingWidth = 0.3;
        for (TextLayer &layer : settings.layers) {
            layer.text = u"Word"_s;
            layer.visible = true;
            layer.x = layer.y = 0.25;
            layer.size = 0.09;
            layer.rotation = 45;
        }
    };
    const auto reset = [&](Tool tool, std::function<bool(const FrameSettings &)> holds) {
        play(tool, changed, {{"reset", [&] { click(control(u"reset"_s)); }, std::move(holds)}});
    };
    reset(Tool::Canvas,
          [&](auto &now) { return now.preset == fresh.preset && now.customWidth == fresh.customWidth; });
    reset(Tool::Background, [&](auto &now) {
        return now.background == fresh.background && now.color == fresh.color &&
               now.secondColor == fresh.secondColor && now.border == 0.03;
    });
    reset(Tool::Border, [&](auto &now) {
        return now.style == fresh.style && now.border == fresh.border && now.borderColor == fresh.borderColor;
    });
    reset(Tool::Film, [](auto &now) {
        return now.style == FrameStyle::film && now.film == FilmOptions() && now.border == 0.03;
    });
    const auto isFresh = [&](const FrameSettings &now, const QString &id) {
        const TextLayer &layer = *now.layer(id);
        const auto known = std::ranges::find(defaultLayers(), id, &TextLayer::id);
        return layer.x == known->x && layer.y == known->y && layer.size == known->size && !layer.rotation;
    };
    reset(Tool::Text, [&](auto &now) {
        return isFresh(now, u"title"_s) && now.layer(u"title"_s)->text == u"Word"_s &&
               !isFresh(now, u"caption"_s);
    });
    reset(Tool::Logo,
          [&](auto &now) { return isFresh(now, u"watermark"_s) && now.layer(u"watermark"_s)->imageFile; });
    reset(Tool::Signature, [](auto &now) {
        return now.handwritingFile && near(*now.handwritingX, 0.5) && near(*now.handwritingY, 0.5) &&
               near(*now.handwritingWidth, 1);
    });
    reset(Tool::Camera, [](auto &now) {
        return !now.layer(u"brand"_s)->visible && !now.layer(u"date"_s)->visible &&
               now.layer(u"title"_s)->visible && now.layer(u"brand"_s)->text == u"Word"_s;
    });
}

TEST_F(Controls, NumberFieldsGiveTheKeyboardBack)
{
    window().state().setTool(Tool::Placement);
    for (const Qt::Key end : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        page().canvas()->setFocus();
        auto *field = control(u"size"_s)->findChild<NumberField *>();
        click(field);
        QCoreApplication::processEvents();
        type(u"44"_s);
        press(end, end == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        EXPECT_EQ(QApplication::focusWidget(), page().canvas());
        EXPECT_EQ(near(settings().scale, 0.44), end != Qt::Key_Escape);
        EXPECT_EQ(field->text(), end == Qt::Key_Escape ? u"88 %"_s : u"44 %"_s);
        model().undo();
    }
    auto *field = control(u"size"_s)->findChild<NumberField *>();
    click(field);
    press(Qt::Key_Down);
    EXPECT_NEAR(settings().scale, 0.87, 1e-9);
    press(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(settings().scale, 0.97, 1e-9);
    // A press that is let go elsewhere chooses nothing.
    window().state().setTool(Tool::Canvas);
    const FrameSettings before = settings();
    auto *presets = control<ItemView>(u"presets"_s);
    QTest::mousePress(presets, Qt::LeftButton, {}, presets->itemRect(2).center());
    QTest::mouseMove(presets, presets->itemRect(4).center());
    QTest::mouseRelease(presets, Qt::LeftButton, {}, presets->itemRect(4).center());
    EXPECT_EQ(settings(), before);
    // Up and Down go from row to row.
    presets->setFocus();
    presets->setCursorItem(1);
    press(Qt::Key_Down);
    EXPECT_EQ(presets->cursor(), 4);
    press(Qt::Key_Up);
    EXPECT_EQ(presets->cursor(), 1);
}

TEST_F(Controls, AnotherButtonsReleaseDoesNotEndADrag)
{
    window().state().setTool(Tool::Placement);
    SliderTrack *slider = track(u"size"_s);
    const QPoint middle = slider->rect().center();
    QTest::mousePress(slider, Qt::LeftButton, {}, middle);
    QTest::mouseClick(slider, Qt::RightButton, {}, middle);
    QTest::mouseMove(slider, QPoint(slider->width() - 2, middle.y()));
    EXPECT_NEAR(settings().scale, 1, 1e-6);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(slider->width() - 2, middle.y()));
    const QPoint centre = page().canvas()->rect().center();
    QTest::mousePress(page().canvas(), Qt::LeftButton, {}, centre);
    QTest::mouseMove(page().canvas(), centre + QPoint(0, 30));
    QTest::mouseClick(page().canvas(), Qt::RightButton, {}, centre + QPoint(0, 30));
    const double then = settings().y;
    QTest::mouseMove(page().canvas(), centre + QPoint(0, 60));
    EXPECT_GT(settings().y, then);
    QTest::mouseRelease(page().canvas(), Qt::LeftButton, {}, centre + QPoint(0, 60));
}

} // namespace
} // namespace tarnovel::test
