// Every control of the inspector: what a person does with it, what changes, and one step to take it back.

#include <QSignalSpy>

#include "app/canvas/CanvasView.h"
#include "app/inspector/StockPicker.h"
#include "app/kit/Button.h"
#include "app/kit/ColorPicker.h"
#include "app/kit/Overlay.h"
#include "app/kit/Switch.h"
#include "render/BuiltInTemplate.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

bool near(double value, double wanted, double reach = 1e-6)
{
    return std::abs(value - wanted) < reach;
}

bool isInk(const Ink &ink, QRgb wanted, double reach = 0.003)
{
    return near(ink.r, qRed(wanted) / 255.0, reach) && near(ink.g, qGreen(wanted) / 255.0, reach) &&
           near(ink.b, qBlue(wanted) / 255.0, reach);
}

class Controls : public WindowTest {
protected:
    using Change = std::function<void(FrameSettings &)>;
    struct Row {
        const char *what;
        std::function<void()> act;
        /// What holds of the settings afterwards; nothing else of them may have changed.
        std::function<bool(const FrameSettings &now)> holds;
    };

    void SetUp() override
    {
        WindowTest::SetUp();
        showPhotos(2);
    }

    /// Plays the rows, each on a photo as `given` makes it.
    void play(Tool tool, const Change &given, const std::vector<Row> &rows)
    {
        window().state().setTool(tool);
        for (const Row &row : rows) {
            SCOPED_TRACE(row.what);
            FrameSettings start;
            start.normalize();
            given(start);
            model().update(start);
            m_world->state().selectLayer({});
            m_world->settle();
            page().canvas()->setFocus();
            row.act();
            if (HasFatalFailure()) {
                return;
            }
            EXPECT_TRUE(row.holds(settings()));
            EXPECT_NE(settings(), start) << "nothing has happened";
            press(Qt::Key_Z, Qt::ControlModifier);
            EXPECT_EQ(settings(), start) << "one Ctrl+Z takes it back";
            EXPECT_FALSE(model().canUndo()) << "one step in the history";
        }
    }

    void key(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        ASSERT_NE(widget, nullptr);
        widget->setFocus();
        press(key, modifiers);
    }

    /// Pulls a slider's knob to a share of its way.
    void slideTo(const QString &name, double share)
    {
        SliderTrack *slider = track(name);
        ASSERT_NE(slider, nullptr);
        constexpr double knob = 16;
        const auto at = [&](double part) {
            return QPointF(knob / 2 + part * (slider->width() - knob), slider->height() / 2.0);
        };
        const double now =
            double(slider->value() - slider->minimum()) / (slider->maximum() - slider->minimum());
        drag(slider, at(now), at(share) - at(now));
    }

    void doubleClick(const QString &name)
    {
        SliderTrack *slider = track(name);
        ASSERT_NE(slider, nullptr);
        QTest::mouseDClick(slider, Qt::LeftButton, {}, slider->rect().center());
    }
};

TEST_F(Controls, Placement)
{
    const Change given = [](FrameSettings &settings) {
        settings.scale = 0.5;
        settings.x = 0.1;
        settings.y = -0.1;
    };
    play(
        Tool::Placement, given,
        {{"type a size", [&] { enter(u"size"_s, u"70"_s); }, [](auto &now) { return near(now.scale, 0.7); }},
         {"type too much", [&] { enter(u"size"_s, u"400"_s); }, [](auto &now) { return near(now.scale, 1); }},
         {"type too little", [&] { enter(u"size"_s, u"1"_s); },
          [](auto &now) { return near(now.scale, 0.1); }},
         {"pull the knob", [&] { slideTo(u"size"_s, 1); }, [](auto &now) { return near(now.scale, 1); }},
         {"an arrow", [&] { key(track(u"size"_s), Qt::Key_Right); },
          [](auto &now) { return near(now.scale, 0.51); }},
         {"Shift and an arrow", [&] { key(track(u"size"_s), Qt::Key_Left, Qt::ShiftModifier); },
          [](auto &now) { return near(now.scale, 0.4); }},
         {"a double click", [&] { doubleClick(u"size"_s); }, [](auto &now) { return near(now.scale, 0.88); }},
         {"across", [&] { enter(u"x"_s, u"-12,5"_s); },
          [](auto &now) { return near(now.x, -0.125) && near(now.y, -0.1); }},
         {"down", [&] { enter(u"y"_s, u"20"_s); },
          [](auto &now) { return near(now.y, 0.2) && near(now.x, 0.1); }},
         {"keep the sides equal", [&] { click(control(u"lockX"_s)); },
          [](auto &now) { return now.lockX && !now.lockY; }},
         {"keep top and bottom equal", [&] { key(control(u"lockY"_s), Qt::Key_Return); },
          [](auto &now) { return now.lockY && !now.lockX; }},
         {"reset", [&] { click(control(u"reset"_s)); },
          [](auto &now) { return near(now.scale, 0.88) && now.x == 0 && now.y == 0; }}});
}

TEST_F(Controls, Canvas)
{
    play(Tool::Canvas, [](FrameSettings &) {},
         {{"a preset", [&] { clickItem(u"presets"_s, 2); },
           [](auto &now) { return now.preset == CanvasPreset::square; }},
          {"another by keys",
           [&] {
               auto *tiles = control<ItemView>(u"presets"_s);
               tiles->setFocus();
               tiles->setCursorItem(0);
               press(Qt::Key_Right);
               press(Qt::Key_Return);
           },
           [](auto &now) { return now.preset == CanvasPreset::instagram; }},
          {"a width", [&] { enter(u"customWidth"_s, u"5"_s); },
           [](auto &now) { return now.preset == CanvasPreset::custom && now.customWidth == 5; }},
          {"a height", [&] { enter(u"customHeight"_s, u"500"_s); },
           [](auto &now) { return now.preset == CanvasPreset::custom && now.customHeight == 100; }}});
}

TEST_F(Controls, Background)
{
    const auto point = [&](const QString &part, double x, double y) {
        auto *picker = control<ColorPicker>(u"picker"_s);
        QWidget *widget = part == u"field"_s ? static_cast<QWidget *>(picker->findChild<ColorField *>())
                                             : picker->findChild<HueBar *>();
        click(widget, QPoint(qRound(x * widget->width()), qRound(y * widget->height())));
    };
    const auto hsv = [](const Ink &ink) {
        return QColor::fromRgbF(float(ink.r), float(ink.g), float(ink.b));
    };
    const Change red = [](FrameSettings &settings) { settings.color = {0.8, 0.2, 0.2}; };
    play(Tool::Background, red,
         {{"a gradient", [&] { clickItem(u"kind"_s, 1); },
           [](auto &now) { return now.background == Backdrop::gradient; }},
          {"a blur", [&] { clickItem(u"kind"_s, 2); },
           [](auto &now) { return now.background == Backdrop::blur; }},
          {"a photo's color", [&] { clickItem(u"photoColors"_s, 0); },
           [&](auto &now) { return now.color == model().previews().palette.first(); }},
          {"a paper", [&] { clickItem(u"papers"_s, 1); },
           [](auto &now) { return isInk(now.color, 0xFFF4F1EA); }},
          {"saturation and brightness", [&] { point(u"field"_s, 0.25, 0.4); },
           [&](auto &now) {
               return near(hsv(now.color).hsvSaturationF(), 0.25, 0.02) &&
                      near(hsv(now.color).valueF(), 0.6, 0.02);
           }},
          {"a hue", [&] { point(u"bar"_s, 0.5, 0.5); },
           [&](auto &now) { return near(hsv(now.color).hsvHueF(), 0.5, 0.02); }},
          {"a hue by key",
           [&] { key(control<ColorPicker>(u"picker"_s)->findChild<HueBar *>(), Qt::Key_Right); },
           [&](auto &now) { return near(hsv(now.color).hsvHueF(), 0.01, 0.009); }},
          {"a code",
           [&] {
               auto *hex = control<ColorPicker>(u"picker"_s)->findChild<Field *>();
               click(hex);
               hex->selectAll();
               type(u"336699"_s);
               press(Qt::Key_Return);
               page().canvas()->setFocus();
           },
           [](auto &now) { return isInk(now.color, 0xFF336699); }}});
    play(Tool::Background,
         [](FrameSettings &settings) {
             settings.background = Backdrop::gradient;
             settings.color = {0.8, 0.2, 0.2};
         },
         {{"the second color",
           [&] {
               clickItem(u"whichColor"_s, 1);
               clickItem(u"papers"_s, 5);
           },
           [](auto &now) { return isInk(now.secondColor, 0xFF2A2A28) && isInk(now.color, 0xFFCC3333); }}});
}

TEST_F(Controls, Border)
{
    play(Tool::Border, [](FrameSettings &) {},
         {{"a style", [&] { clickItem(u"style"_s, 1); },
           [](auto &now) { return now.style == FrameStyle::instant; }},
          {"the film", [&] { clickItem(u"style"_s, 2); },
           [](auto &now) { return now.style == FrameStyle::film && now.film; }},
          {"a width", [&] { enter(u"width"_s, u"2"_s); }, [](auto &now) { return near(now.border, 0.02); }},
          {"too wide", [&] { enter(u"width"_s, u"40"_s); }, [](auto &now) { return near(now.border, 0.04); }},
          {"a double click", [&] { slideTo(u"width"_s, 0.9); },
           [](auto &now) { return near(now.border, 0.036, 0.002); }},
          {"a color", [&] { clickItem(u"color"_s, 5); },
           [](auto &now) { return isInk(now.borderColor, 0xFFFFFFFF); }},
          {"a photo's color", [&] { clickItem(u"photoColors"_s, 0); },
           [&](auto &now) { return now.borderColor == model().previews().palette.first(); }},
          {"any color",
           [&] {
               auto *dots = control<ItemView>(u"color"_s);
               clickItem(u"color"_s, dots->count() - 1);
               auto *field = window().findChild<Overlay *>()->findChild<ColorField *>();
               click(field, QPoint(field->width() - 1, 0));
               press(Qt::Key_Escape);
           },
           [](auto &now) { return near(now.borderColor.r, 1, 0.02) && near(now.borderColor.g, 0, 0.02); }}});
}

TEST_F(Controls, Film)
{
    play(Tool::Film, [](FrameSettings &) {},
         {{"use the film frame", [&] { click(control(u"useFilm"_s)); },
           [](auto &now) { return now.style == FrameStyle::film && now.film; }}});
    const auto is = [](auto proof) {
        return [proof](const FrameSettings &now) { return now.film && proof(*now.film); };
    };
    play(
        Tool::Film,
        [](FrameSettings &settings) {
            settings.style = FrameStyle::film;
            settings.film = FilmOptions();
        },
        {{"a format", [&] { clickItem(u"format"_s, 2); },
          is([](auto &film) { return film.format == filmFormats.at(2); })},
         {"a stock, searched whatever its case",
          [&] {
              auto *search = control<StockPicker>(u"stocks"_s)->findChild<Field *>();
              click(search);
              type(u"hp5"_s);
              press(Qt::Key_Return);
              page().canvas()->setFocus();
          },
          is([](auto &film) { return film.stock.contains(u"HP5"_s); })},
         {"perforations", [&] { click(control(u"perforations"_s)); },
          is([](auto &film) { return !film.perforations; })},
         {"a light base", [&] { click(control(u"light"_s)); }, is([](auto &film) { return film.light; })},
         {"no numbers", [&] { click(control(u"numbers"_s)); },
          is([](auto &film) { return !film.showsNumber; })},
         {"a number", [&] { enter(u"number"_s, u"12"_s); }, is([](auto &film) { return film.number == 12; })},
         {"a marking", [&] { enter(u"topLabel"_s, u"SAFETY"_s); },
          is([](auto &film) { return film.topLabel == u"SAFETY"_s && !film.bottomLabel; })},
         {"another below", [&] { enter(u"bottomLabel"_s, u"2026"_s); },
          is([](auto &film) { return film.bottomLabel == u"2026"_s && !film.topLabel; })}});
}

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
