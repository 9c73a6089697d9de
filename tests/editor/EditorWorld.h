#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "editor/EditorModel.h"
#include "model/SessionStore.h"

namespace tarnovel::test {

/// A clock that stands still until the test moves it.
class ManualClock : public Clock {
public:
    std::chrono::milliseconds elapsed() const override { return m_now; }
    SecondsSince2001 date() const override { return m_now.count() / 1000.0; }
    std::unique_ptr<PendingCall> after(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        auto state = std::make_shared<Call>(Call{m_now + delay, std::move(action)});
        m_calls.push_back(state);
        return std::make_unique<Handle>(std::move(state));
    }

    void advance(std::chrono::milliseconds time)
    {
        m_now += time;
        for (size_t i = 0; i < m_calls.size(); ++i) {
            const std::shared_ptr<Call> call = m_calls.at(i).lock();
            if (call && call->action && call->due <= m_now) {
                std::exchange(call->action, nullptr)();
            }
        }
    }

private:
    struct Call {
        std::chrono::milliseconds due;
        std::function<void()> action;
    };
    struct Handle : PendingCall {
        explicit Handle(std::shared_ptr<Call> call) : m_call(std::move(call)) {}
        std::shared_ptr<Call> m_call;
    };
    std::chrono::milliseconds m_now{1'000'000};
    std::vector<std::weak_ptr<Call>> m_calls;
};

/// A library folder with everything an editor model works with.
class EditorWorld : public testing::Test {
protected:
    QTemporaryDir m_folder;
    QString m_library = m_folder.filePath(QStringLiteral("library"));
    bool m_made = QDir().mkpath(m_library);
    ManualClock m_clock;
    Preferences m_preferences{m_folder.filePath(QStringLiteral("preferences.ini"))};
    ImagePipeline m_pipeline{m_library, m_folder.filePath(QStringLiteral("temporary"))};
    SessionWriter m_writer{m_library};
    EditorServices m_services{m_pipeline, m_writer, m_preferences, m_clock, m_library};

    /// A photo file in the library.
    PhotoItem photo(const QString &name, QSize size = {60, 40}) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(static_cast<int>(qHash(name) % 360), 200, 200));
        EXPECT_TRUE(image.save(m_library + u'/' + name, "JPEG"));
        PhotoItem item;
        item.id = QUuid::createUuid();
        item.file = name;
        item.name = name;
        item.width = size.width();
        item.height = size.height();
        item.settings.layer(QStringLiteral("brand"))->text = name;
        return item;
    }

    QList<PhotoItem> photos(int count) const
    {
        QList<PhotoItem> list;
        for (int i = 0; i < count; ++i) {
            list.append(photo(QStringLiteral("%1.jpg").arg(i)));
        }
        return list;
    }

    /// Lets events pass until the condition holds; false after ten seconds.
    template<typename Condition>
    static bool waitFor(Condition condition)
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition() && timer.elapsed() < 10'000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        return condition();
    }

    bool exists(const QString &name) const { return QFileInfo::exists(m_library + u'/' + name); }

    /// How many steps can be taken back.
    static int stepsBack(const EditorModel &model)
    {
        EditHistory steps = model.history();
        int count = 0;
        while (steps.undo([](const EditSnapshot &step) { return step; })) {
            ++count;
        }
        return count;
    }

    Session stored() const { return loadSession(m_library, LibraryAccess::ReadOnly).session; }
};

} // namespace tarnovel::test
