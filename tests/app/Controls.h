#pragma once

#include "app/canvas/CanvasView.h"
#include "support/WindowTest.h"

namespace tarnovel::test {

inline bool near(double value, double wanted, double reach = 1e-6)
{
    return std::abs(value - wanted) < reach;
}

inline bool isInk(const Ink &ink, QRgb wanted, double reach = 0.003)
{
    return near(ink.r, qRed(wanted) / 255.0, reach) && near(ink.g, qGreen(wanted) / 255.0, reach) &&
           near(ink.b, qBlue(wanted) / 255.0, reach);
}

/// The inspector, whose controls are worked one after another.
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
    void play(app::Tool tool, const Change &given, const std::vector<Row> &rows)
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
        app::SliderTrack *slider = track(name);
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
        app::SliderTrack *slider = track(name);
        ASSERT_NE(slider, nullptr);
        QTest::mouseDClick(slider, Qt::LeftButton, {}, slider->rect().center());
    }
};

} // namespace tarnovel::test
