#pragma once

#include <QApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest/qtest_widgets.h>
#include <gtest/gtest.h>

#include "app/kit/Field.h"
#include "app/kit/ItemView.h"
#include "app/kit/Slider.h"
#include "app/window/EditorPage.h"
#include "app/window/ToolPanel.h"
#include "support/AppWorld.h"

namespace tarnovel::test {

/// The program's window with photos in it, driven as by hand: keys go to whatever has the keyboard.
class WindowTest : public testing::Test {
protected:
    QTemporaryDir m_folder;
    std::unique_ptr<AppWorld> m_world;

    void SetUp() override
    {
        m_world = std::make_unique<AppWorld>(m_folder.path());
        window().resize(1440, 920);
        window().show();
        window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        m_world->settle();
    }

    app::MainWindow &window() { return m_world->window(); }
    EditorModel &model() { return m_world->model(); }
    app::EditorPage &page() { return *window().page(); }
    const FrameSettings &settings() { return model().current()->settings; }

    QString photo(const QString &name, QSize size = {600, 400}) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(static_cast<int>(qHash(name) % 360), 160, 200));
        const QString path = m_folder.filePath(name + QStringLiteral(".jpg"));
        EXPECT_TRUE(image.save(path, "JPEG"));
        return path;
    }

    void showPhotos(int count)
    {
        QStringList paths;
        for (int i = 0; i < count; ++i) {
            paths.append(photo(QString::number(i), i % 2 == 0 ? QSize(600, 400) : QSize(400, 600)));
        }
        m_world->import(paths);
        ASSERT_EQ(model().photos().size(), count);
    }

    /// The control of this object name that can be seen; of the tool's panel first.
    template<typename Widget = QWidget>
    Widget *control(const QString &name)
    {
        for (QWidget *part : {static_cast<QWidget *>(page().panel()), static_cast<QWidget *>(&window())}) {
            for (Widget *widget : part->findChildren<Widget *>(name)) {
                if (widget->isVisible()) {
                    return widget;
                }
            }
        }
        ADD_FAILURE() << "nothing is called " << name.toStdString();
        return nullptr;
    }

    static void click(QWidget *widget, QPoint at = {})
    {
        ASSERT_NE(widget, nullptr);
        QTest::mouseClick(widget, Qt::LeftButton, {}, at);
    }

    void clickItem(const QString &name, int index)
    {
        auto *items = control<app::ItemView>(name);
        ASSERT_NE(items, nullptr);
        ASSERT_LT(index, items->count());
        click(items, items->itemRect(index).center());
    }

    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget *focused = QApplication::focusWidget();
        QTest::keyClick(focused ? focused : QApplication::activeWindow(), key, modifiers);
    }

    static void type(const QString &text)
    {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClicks(QApplication::focusWidget(), text);
    }

    /// Types into the field of this name, or into that of a slider, and ends with Enter.
    void enter(const QString &name, const QString &text)
    {
        auto *widget = control(name);
        ASSERT_NE(widget, nullptr);
        auto *field = qobject_cast<QLineEdit *>(widget);
        field = field ? field : widget->findChild<QLineEdit *>();
        ASSERT_NE(field, nullptr);
        click(field);
        field->selectAll();
        type(text);
        press(Qt::Key_Return);
    }

    app::SliderTrack *track(const QString &name)
    {
        auto *slider = control<app::Slider>(name);
        return slider ? slider->findChild<app::SliderTrack *>() : nullptr;
    }

    static void drag(QWidget *widget, QPointF from, QPointF way)
    {
        QTest::mousePress(widget, Qt::LeftButton, {}, from.toPoint());
        for (int step = 1; step <= 8; ++step) {
            QTest::mouseMove(widget, (from + way * step / 8).toPoint());
        }
        QTest::mouseRelease(widget, Qt::LeftButton, {}, (from + way).toPoint());
    }

    template<typename Condition>
    static bool waitFor(Condition condition)
    {
        return QTest::qWaitFor(condition, 15'000);
    }
};

} // namespace tarnovel::test
