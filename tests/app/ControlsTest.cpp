// Every control of the inspector: what a person does with it, what changes, and one step to take it back.

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

} // namespace
} // namespace tarnovel::test
