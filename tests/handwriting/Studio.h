#pragma once

#include "editor/EditorWorld.h"
#include "handwriting/HandwritingController.h"

namespace tarnovel::test {

/// A studio over the first photo of a library.
class Studio : public EditorWorld {
protected:
    explicit Studio(EditorModel::Load load = EditorModel::Load::StoredSession) : m_model(m_services, load)
    {
        m_model.append(photos(1));
        m_studio.layOut({600, 700}, 2);
    }

    void write(QPointF from, QPointF to)
    {
        m_studio.penDown({from, 0});
        for (int i = 1; i < 20; ++i) {
            m_studio.penMove({from + (to - from) * i / 20, i * 0.008});
        }
        m_studio.penUp({to, 0.16});
    }

    /// Saves and waits; what the user was told, or nothing.
    QString save(HandwritingController &studio)
    {
        bool ended = false;
        QString told;
        QObject context;
        QObject::connect(&studio, &HandwritingController::saved, &context, [&] { ended = true; });
        QObject::connect(&studio, &HandwritingController::saveFailed, &context, [&](const QString &message) {
            ended = true;
            told = message;
        });
        EXPECT_TRUE(studio.save());
        EXPECT_TRUE(studio.saving());
        EXPECT_FALSE(studio.save());
        EXPECT_TRUE(waitFor([&] { return ended; }));
        EXPECT_FALSE(studio.saving());
        return told;
    }

    QString signature() const { return m_model.current()->settings.handwritingFile.value_or(QString()); }

    EditorModel m_model;
    HandwritingController m_studio{m_model, m_clock, {1050, 1400}, 0.9};
};

} // namespace tarnovel::test
