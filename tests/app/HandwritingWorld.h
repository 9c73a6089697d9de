#pragma once

#include <QApplication>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTest>

#include "app/handwriting/HandwritingScreen.h"
#include "app/handwriting/InkCanvas.h"
#include "app/kit/Button.h"
#include "editor/EditorWorld.h"

namespace tarnovel::test {

using namespace Qt::StringLiterals;
using namespace app;

/// The screen in a window of its own over the first of two photos.
class HandwritingScreenTest : public EditorWorld {
protected:
    HandwritingScreenTest()
    {
        m_model.append(photos(2));
        m_model.select(m_model.photos().first().id);
        QObject::connect(&m_state, &EditorState::saying, &m_screen,
                         [this](const QString &text, Toast::Kind) { m_said.append(text); });
        QObject::connect(&m_screen, &HandwritingScreen::closeAsked, &m_screen, [this] { ++m_closed; });
        QObject::connect(&m_screen, &HandwritingScreen::finished, &m_screen, [this] { ++m_finished; });
        m_screen.resize(1440, 920);
        m_screen.show();
        EXPECT_TRUE(m_screen.begin());
        QCoreApplication::processEvents();
    }

    HandwritingController &studio() { return *m_screen.studio(); }
    InkCanvas *canvas() { return m_screen.findChild<InkCanvas *>(); }
    const InkDrawing &drawing() { return studio().drawing(); }
    /// A place of the page, as fractions of it, on the canvas.
    QPointF at(double x, double y)
    {
        const QRectF page = canvas()->pageRect();
        return {page.left() + x * page.width(), page.top() + y * page.height()};
    }

    void drag(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mousePress(canvas(), button, {}, from.toPoint());
        for (int i = 1; i <= 10; ++i) {
            QTest::mouseMove(canvas(), (from + (to - from) * i / 10).toPoint());
        }
        QTest::mouseRelease(canvas(), button, {}, to.toPoint());
    }

    void pen(QEvent::Type type, QPointF place, double pressure, const QPointingDevice &device)
    {
        const bool down = type != QEvent::TabletRelease;
        QTabletEvent event(type, &device, place, canvas()->mapToGlobal(place), pressure, 10, -20, 0, 0, 0, {},
                           Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton);
        QApplication::sendEvent(canvas(), &event);
        EXPECT_TRUE(event.isAccepted()); // otherwise a mouse would be made of it
    }

    static QPointingDevice tablet(QPointingDevice::PointerType type)
    {
        return {u"pen"_s,
                1,
                QInputDevice::DeviceType::Stylus,
                type,
                QInputDevice::Capability::Position | QInputDevice::Capability::Pressure,
                1,
                3};
    }

    enum class Finger { Down, Moves, Up };
    /// What all fingers on the screen do at one moment.
    void touch(const QList<std::pair<QPointF, Finger>> &fingers)
    {
        QTest::QTouchEventWidgetSequence sequence = QTest::touchEvent(canvas(), m_touchScreen, false);
        for (int i = 0; i < fingers.size(); ++i) {
            const QPoint place = fingers.at(i).first.toPoint();
            switch (fingers.at(i).second) {
            case Finger::Down:
                sequence.press(i, place);
                break;
            case Finger::Moves:
                sequence.move(i, place);
                break;
            case Finger::Up:
                sequence.release(i, place);
                break;
            }
        }
        sequence.commit();
    }

    void saveAndWait()
    {
        const int before = m_finished;
        QTest::mouseClick(button(u"done"_s), Qt::LeftButton);
        EXPECT_TRUE(studio().saving());
        EXPECT_TRUE(waitFor([&] { return m_finished > before; }));
        EXPECT_EQ(m_screen.studio(), nullptr);
        EXPECT_FALSE(m_screen.hasUnsavedInk());
    }

    QWidget *button(const QString &name)
    {
        for (Button *button : m_screen.window()->findChildren<Button *>(name)) {
            if (button->isVisible()) {
                return button;
            }
        }
        ADD_FAILURE() << "no button " << name.toStdString();
        return nullptr;
    }

    EditorModel m_model{m_services, EditorModel::Load::StoredSession};
    SettingsEdits m_edits{m_model, m_clock};
    ImportFlow m_imports{m_model, m_pipeline};
    Thumbnails m_thumbnails{m_pipeline};
    EditorState m_state;
    std::unique_ptr<QPointingDevice> m_touchScreenOwner{QTest::createTouchDevice()};
    QPointingDevice *m_touchScreen = m_touchScreenOwner.get();
    QStringList m_said;
    int m_closed = 0;
    int m_finished = 0;
    HandwritingScreen m_screen{
        {m_model, m_edits, m_imports, m_thumbnails, m_pipeline, m_preferences, m_clock, m_state}};
};

} // namespace tarnovel::test
