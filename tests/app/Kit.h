#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QWheelEvent>
#include <QtTest/qtest_widgets.h>
#include <gtest/gtest.h>

#include "app/kit/ItemView.h"

namespace tarnovel::test {

inline app::Phrase named(const QString &name)
{
    return [name] { return name; };
}

/// A window that holds one control.
class Kit : public testing::Test {
protected:
    ~Kit() override { setLanguageSources({}); }

    QWidget m_window;

    template<typename Control>
    Control *show(Control *control, QSize size = {264, 60})
    {
        control->setParent(&m_window);
        control->setGeometry(QRect(QPoint(20, 20), size));
        m_window.resize(400, 400);
        m_window.show();
        m_window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
        return control;
    }

    static void keys(QWidget *widget, std::initializer_list<Qt::Key> pressed, Qt::KeyboardModifiers held = {})
    {
        widget->setFocus();
        for (const Qt::Key key : pressed) {
            QTest::keyClick(widget, key, held);
        }
    }

    /// Signs of any alphabet, as a keyboard sends them.
    static void type(QWidget *widget, const QString &text)
    {
        for (const QChar sign : text) {
            QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, {}, QString(sign));
            QApplication::sendEvent(widget, &event);
        }
    }

    static void clickItem(app::ItemView *items, int index)
    {
        QTest::mouseClick(items, Qt::LeftButton, {}, items->itemRect(index).center());
    }

    static void wheel(QWidget *widget, QPoint degrees, QPoint pixels = {})
    {
        const QPointF at = QRectF(widget->rect()).center();
        QWheelEvent event(at, widget->mapToGlobal(at), pixels, degrees, Qt::NoButton, {}, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(widget, &event);
    }
};

} // namespace tarnovel::test
