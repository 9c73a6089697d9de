// The controls by themselves: hands and keys on one at a time, and what it tells.

#include <QSignalSpy>

#include "app/Kit.h"
#include "app/kit/Button.h"
#include "app/kit/ColorPicker.h"
#include "app/kit/Field.h"
#include "app/kit/Overlay.h"
#include "app/kit/Slider.h"
#include "app/kit/Stepper.h"
#include "app/kit/Switch.h"
#include "app/kit/Toast.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using namespace app;

TEST_F(Kit, ASliderStepsDragsAndGoesBackToItsUsualValue)
{
    auto *slider =
        show(new Slider(named(u"Scale"_s), {.low = 0, .high = 2, .step = 0.1, .decimals = 1, .usual = 1}));
    auto *track = slider->findChild<SliderTrack *>();
    QSignalSpy changed(slider, &Slider::changed);
    slider->setValue(0.5);
    EXPECT_EQ(changed.size(), 0) << "showing a value tells nobody";
    keys(track, {Qt::Key_Right});
    EXPECT_DOUBLE_EQ(slider->value(), 0.6);
    keys(track, {Qt::Key_Down});
    EXPECT_DOUBLE_EQ(slider->value(), 0.5);
    keys(track, {Qt::Key_Right}, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(slider->value(), 1.5);
    keys(track, {Qt::Key_Right}, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(slider->value(), 2) << "held to its range";
    keys(track, {Qt::Key_Home});
    EXPECT_DOUBLE_EQ(slider->value(), 0);
    const int middle = track->height() / 2;
    QTest::mouseClick(track, Qt::LeftButton, {}, {track->width() - 1, middle});
    EXPECT_DOUBLE_EQ(slider->value(), 2);
    QTest::mouseDClick(track, Qt::LeftButton, {}, {5, middle});
    EXPECT_DOUBLE_EQ(slider->value(), 1);
    QSignalSpy released(slider, &Slider::released);
    QTest::mousePress(track, Qt::LeftButton, {}, {track->width() / 2 + 4, middle});
    EXPECT_DOUBLE_EQ(slider->value(), 1) << "a press on the knob takes it where it is";
    QTest::mouseMove(track, QPoint(-50, middle));
    EXPECT_DOUBLE_EQ(slider->value(), 0);
    QTest::mouseRelease(track, Qt::LeftButton, {}, {-50, middle});
    EXPECT_EQ(released.size(), 1);
    wheel(track, {0, 120});
    EXPECT_DOUBLE_EQ(slider->value(), 0) << "the wheel scrolls the panel";
}

TEST_F(Kit, ASliderSpeaksTheValuesThatItShows)
{
    auto *slider = show(
        new Slider(named(u"Width"_s), {.low = -5, .high = 5, .step = 0.5, .decimals = 1, .unit = u" %"_s}));
    auto *track = slider->findChild<SliderTrack *>();
    slider->setValue(-2.5);
    EXPECT_DOUBLE_EQ(track->spoken().value, -2.5);
    EXPECT_DOUBLE_EQ(track->spoken().low, -5);
    EXPECT_DOUBLE_EQ(track->spoken().high, 5);
    EXPECT_EQ(track->spoken().text, u"−2.5 %"_s);
    track->takeSpoken(1.5);
    EXPECT_DOUBLE_EQ(slider->value(), 1.5);
}

TEST_F(Kit, ANumberFieldTakesWhatIsTypedInEitherWriting)
{
    auto *field =
        show(new NumberField(named(u"Size"_s), {.low = -10, .high = 10, .decimals = 1, .unit = u" %"_s}));
    QSignalSpy typed(field, &NumberField::valueTyped);
    const struct {
        QString text;
        double value;
        QString shown;
    } rows[] = {{u"4"_s, 4, u"4.0 %"_s},        {u"2,5"_s, 2.5, u"2.5 %"_s}, {u" 3.1 % "_s, 3.1, u"3.1 %"_s},
                {u"−1"_s, -1, u"−1.0 %"_s},     {u"-2"_s, -2, u"−2.0 %"_s},  {u"99"_s, 10, u"10.0 %"_s},
                {u"-1e9"_s, -10, u"−10.0 %"_s}, {u"0"_s, 0, u"0 %"_s}};
    for (const auto &row : rows) {
        field->setFocus();
        field->selectAll();
        type(field, row.text);
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_DOUBLE_EQ(field->value(), row.value) << row.text.toStdString();
        EXPECT_EQ(field->text(), row.shown);
    }
    EXPECT_EQ(typed.size(), std::ssize(rows));
    for (const QString &wrong : {u"words"_s, u""_s, u"nan"_s, u"inf"_s, u"1.2.3"_s}) {
        field->setFocus();
        field->selectAll();
        type(field, wrong);
        if (wrong.isEmpty()) {
            QTest::keyClick(field, Qt::Key_Delete);
        }
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_EQ(field->text(), u"0 %"_s) << wrong.toStdString();
    }
    EXPECT_EQ(typed.size(), std::ssize(rows)) << "what is no number tells nothing";
    field->setFocus();
    type(field, u"7"_s);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(field->value(), 0) << "Esc brings the old value back";
    keys(field, {Qt::Key_Up});
    EXPECT_EQ(field->value(), 1);
    keys(field, {Qt::Key_Down}, Qt::ShiftModifier);
    EXPECT_EQ(field->value(), -9);
}

TEST_F(Kit, NumbersAreWrittenInTheLanguage)
{
    NumberField field(named(u"Size"_s), {.low = 0, .high = 100, .decimals = 1, .unit = u" %"_s});
    field.setValue(4.25);
    EXPECT_EQ(field.textOf(1234.5), u"1234.5 %"_s);
    setLanguageSources({[] { return u"french"_s; }, {}});
    EXPECT_EQ(field.textOf(4.5), u"4,5\u202f%"_s);
    NumberField free(named(u"Ratio"_s), {.low = 0, .high = 100, .decimals = -1});
    EXPECT_EQ(free.textOf(2), u"2"_s);
    EXPECT_EQ(free.textOf(2.345), u"2,35"_s) << "two decimals at most";
}

TEST_F(Kit, AFieldKeepsWhatIsBeingTyped)
{
    auto *field = show(new Field(named(u"Name"_s)), {200, 32});
    field->display(u"shown"_s);
    EXPECT_EQ(field->text(), u"shown"_s);
    field->setFocus();
    type(field, u"typed "_s);
    field->display(u"another"_s);
    EXPECT_EQ(field->text(), u"typed shown"_s);
    field->clearFocus();
    field->display(u"another"_s);
    EXPECT_EQ(field->text(), u"another"_s);
}

TEST_F(Kit, AStepperStopsAtItsEnds)
{
    auto *stepper = show(new Stepper(named(u"Number"_s), 1, 3), {120, 32});
    stepper->setValue(1);
    const QList<Button *> buttons = stepper->findChildren<Button *>();
    ASSERT_EQ(buttons.size(), 2);
    QSignalSpy changed(stepper, &Stepper::changed);
    EXPECT_FALSE(buttons.first()->isEnabled());
    buttons.last()->click();
    buttons.last()->click();
    EXPECT_EQ(changed.last().first().toInt(), 3);
    EXPECT_FALSE(buttons.last()->isEnabled());
    EXPECT_TRUE(buttons.first()->isEnabled());
    stepper->setRange(1, 5);
    EXPECT_TRUE(buttons.last()->isEnabled());
    buttons.first()->click();
    EXPECT_EQ(changed.last().first().toInt(), 2);
}

TEST_F(Kit, AColourIsPickedByHandByKeysAndByItsDigits)
{
    auto *picker = show(new ColorPicker, {264, 300});
    QSignalSpy changed(picker, &ColorPicker::changed);
    const auto told = [&] { return changed.last().first().value<QColor>(); };
    picker->setColor(QColor(255, 0, 0));
    EXPECT_EQ(changed.size(), 0);
    auto *hex = picker->findChild<Field *>();
    hex->setFocus();
    hex->selectAll();
    type(hex, u"00ff80"_s);
    QTest::keyClick(hex, Qt::Key_Return);
    EXPECT_EQ(told().name(), u"#00ff80"_s);
    auto *field = picker->findChild<ColorField *>();
    const auto dragTo = [field](QPoint place) {
        QTest::mousePress(field, Qt::LeftButton, {}, field->rect().center());
        QTest::mouseMove(field, place);
        QTest::mouseRelease(field, Qt::LeftButton, {}, place);
    };
    dragTo({-5, field->height() + 5});
    EXPECT_EQ(told().name(), u"#000000"_s) << "black lies at the bottom";
    dragTo({-5, -5});
    EXPECT_EQ(told().name(), u"#ffffff"_s) << "white at the upper left";
    dragTo({field->width() + 5, -5});
    const QColor full = told();
    EXPECT_GT(full.hsvSaturationF(), 0.98F);
    EXPECT_NEAR(full.hueF(), 150 / 360.0, 0.01) << "the hue has outlived black and white";
    auto *bar = picker->findChild<HueBar *>();
    keys(bar, {Qt::Key_Right});
    EXPECT_GT(told().hueF(), full.hueF());
    keys(field, {Qt::Key_Down});
    EXPECT_LT(told().valueF(), 1);
}

TEST_F(Kit, ASwitchTellsOnlyWhatTheUserDoes)
{
    auto *toggle = show(new Switch(named(u"On"_s)), {200, 32});
    QSignalSpy told(toggle, &Switch::toggledByUser);
    toggle->show(true);
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(told.size(), 0);
    QTest::mouseClick(toggle, Qt::LeftButton, {}, {3, 3});
    EXPECT_FALSE(told.last().first().toBool());
    keys(toggle, {Qt::Key_Space});
    EXPECT_TRUE(told.last().first().toBool());
}

TEST_F(Kit, AQuestionIsAnsweredOnce)
{
    auto *anchor = show(new Button(Button::Kind::Secondary, named(u"Remove"_s)), {100, 32});
    int confirmed = 0;
    const Question question{named(u"Remove?"_s), named(u"It goes."_s), named(u"Remove it"_s)};
    ask(anchor, question, [&] { ++confirmed; });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(confirmed, 0) << "the keyboard starts on Cancel";
    EXPECT_FALSE(m_window.findChild<Overlay *>() && m_window.findChild<Overlay *>()->isVisible());
    Overlay *second = ask(anchor, question, [&] { ++confirmed; });
    auto *confirm = second->findChild<Button *>(u"confirm"_s);
    ASSERT_TRUE(confirm);
    EXPECT_EQ(confirm->accessibleName(), u"Remove it"_s);
    confirm->click();
    EXPECT_EQ(confirmed, 1);
}

TEST_F(Kit, ATextIsAskedForUntilItCanBeTaken)
{
    auto *anchor = show(new Button(Button::Kind::Secondary, named(u"Save"_s)), {100, 32});
    QStringList taken;
    Overlay *sheet = askText(anchor,
                             {.title = named(u"Save"_s),
                              .text = named(u"A name"_s),
                              .fieldName = named(u"Name"_s),
                              .confirm = named(u"Keep"_s)},
                             [&](const QString &text) {
                                 taken.append(text);
                                 return text.isEmpty() ? u"Enter a name."_s : QString();
                             });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(taken, QStringList{u""_s});
    EXPECT_TRUE(sheet->isVisible()) << "the complaint stays with its field";
    type(QApplication::focusWidget(), u"Mine"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(taken, (QStringList{u""_s, u"Mine"_s}));
    QPointer<Overlay> gone(sheet);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !gone || !gone->isVisible(); }));
}

TEST_F(Kit, AMessageStandsOnItsAnchorAndWrapsInItsRoom)
{
    auto *toast = new Toast(&m_window);
    show(new QWidget, {10, 10});
    toast->setAnchor({200, 300}, 360);
    toast->say(u"Short"_s, Toast::Kind::Plain);
    EXPECT_NEAR(toast->geometry().center().x(), 200, 1);
    const QRect low = toast->geometry();
    toast->say(QString(u"many words "_s).repeated(20), Toast::Kind::Error);
    EXPECT_LT(toast->width(), low.width() + 360) << "the shadow's margin besides";
    EXPECT_GT(toast->height(), low.height());
    EXPECT_EQ(toast->geometry().bottom(), low.bottom());
    toast->say(u"Working"_s, Toast::Kind::Busy);
    EXPECT_TRUE(toast->isVisible());
    toast->endBusy();
    EXPECT_FALSE(toast->isVisible());
    toast->say(u"Done"_s, Toast::Kind::Done);
    toast->endBusy();
    EXPECT_TRUE(toast->isVisible()) << "only work under way ends so";
}

} // namespace
} // namespace tarnovel::test
