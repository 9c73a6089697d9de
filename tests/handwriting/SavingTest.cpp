#include <atomic>
#include <thread>

#include <QDeadlineTimer>
#include <QRegularExpression>

#include "base/Cancellation.h"
#include "handwriting/HandwritingReference.h"
#include "handwriting/Strokes.h"
#include "handwriting/Studio.h"
#include "imaging/ImageEncoder.h"
#include "language/AppLanguage.h"
#include "model/Signature.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

using Saving = Studio;

TEST_F(Saving, AnEmptyPageChangesNothing)
{
    const FrameSettings before = m_model.current()->settings;
    EXPECT_FALSE(m_studio.save());
    write({100, 100}, {400, 300});
    m_studio.undo();
    EXPECT_FALSE(m_studio.save());
    EXPECT_EQ(m_model.current()->settings, before);
    EXPECT_FALSE(m_model.canUndo());
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
}

TEST_F(Saving, PutsThePageOverTheWholeFrame)
{
    m_studio.setColor({1, 0, 0});
    m_studio.setWidth(20);
    write({100, 60}, {400, 60});
    m_studio.setColor({0, 0, 1});
    write({100, 120}, {400, 120});
    EXPECT_EQ(save(m_studio), QString());
    const FrameSettings settings = m_model.current()->settings;
    EXPECT_TRUE(QRegularExpression(u"^handwriting-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.png$"_s)
                    .match(signature())
                    .hasMatch());
    EXPECT_EQ(settings.handwritingAspect, 0.75);
    EXPECT_EQ(settings.handwritingX, 0.5);
    EXPECT_EQ(settings.handwritingY, 0.5);
    EXPECT_EQ(settings.handwritingWidth, 1.0);
    const QImage file(m_library + u'/' + signature());
    EXPECT_EQ(file.size(), QSize(1050, 1400));
    EXPECT_EQ(file.pixel(250, 60), qRgba(255, 0, 0, 255));
    EXPECT_EQ(qAlpha(file.pixel(250, 90)), 0);

    const ExportedFile framed = m_pipeline.exportPhoto(*m_model.current(), {}).result();
    const QImage exported(framed.path);
    const double scale = exported.width() / 1050.0;
    const QColor red = exported.pixelColor(static_cast<int>(250 * scale), static_cast<int>(60 * scale));
    const QColor blue = exported.pixelColor(static_cast<int>(250 * scale), static_cast<int>(120 * scale));
    EXPECT_GT(red.red(), red.blue() + 200);
    EXPECT_GT(blue.blue(), blue.red() + 200);

    m_model.undo();
    EXPECT_EQ(signature(), QString());
    EXPECT_FALSE(m_model.canUndo());
}

TEST_F(Saving, KeepsTheOldFileWhileTheHistoryNeedsIt)
{
    write({100, 60}, {400, 60});
    EXPECT_EQ(save(m_studio), QString());
    const QString first = signature();
    EXPECT_TRUE(waitFor([&] { return !m_model.previews().signature.isNull(); }));
    HandwritingController again(m_model, m_clock, {1050, 1400}, 0.9);
    again.setFinish(HandwritingFinish::rainbow);
    again.penDown({{500, 1300}, 0});
    again.penUp({{600, 1200}, 0.2});
    bool oldShown = true;
    QObject::connect(&again, &HandwritingController::saved, &again,
                     [&] { oldShown = !m_model.previews().signature.isNull(); });
    EXPECT_EQ(save(again), QString());
    EXPECT_FALSE(oldShown);
    EXPECT_TRUE(waitFor([&] { return !m_model.previews().signature.isNull(); }));
    const QString second = signature();
    EXPECT_NE(first, second);
    EXPECT_EQ(stepsBack(m_model), 2);
    m_model.flush();
    QCoreApplication::processEvents();
    EXPECT_TRUE(exists(first));
    m_model.undo();
    EXPECT_EQ(signature(), first);
    m_model.redo();
    EXPECT_EQ(stored().photos.size(), 1);

    for (qsizetype i = 0; i < EditHistory::mostSteps; ++i) {
        m_model.checkpoint();
    }
    m_model.scheduleSave();
    m_model.flush();
    EXPECT_TRUE(waitFor([&] { return !exists(first); }));
    EXPECT_TRUE(exists(second));
    EXPECT_EQ(stored().photos.first().settings.handwritingFile, second);
    m_model.checkpoint();
    m_model.update(withoutSignature(m_model.current()->settings));
    EXPECT_EQ(signature(), QString());
}

TEST_F(Saving, AFailureSaysSoAndChangesNothing)
{
    write({100, 60}, {400, 60});
    const FrameSettings before = m_model.current()->settings;
    m_model.flush();
    ASSERT_TRUE(QDir(m_library).removeRecursively());
    EXPECT_EQ(save(m_studio), u"Could not save handwriting."_s);
    EXPECT_EQ(m_model.current()->settings, before);
    EXPECT_FALSE(m_model.canUndo());
    EXPECT_EQ(m_studio.drawing().size(), 1);

    // The photo went while its signature was being written.
    ASSERT_TRUE(QDir().mkpath(m_library));
    m_studio.save();
    m_model.removeCurrent();
    EXPECT_TRUE(waitFor([&] { return !m_studio.saving(); }));
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
}

TEST_F(Saving, AStudioThatClosesLeavesNoFile)
{
    {
        HandwritingController closing(m_model, m_clock, {1050, 1400}, 0.9);
        closing.penDown({{500, 1300}, 0});
        closing.penUp({{600, 1200}, 0.2});
        EXPECT_TRUE(closing.save());
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
    EXPECT_EQ(signature(), QString());
}

TEST_F(Saving, AStudioThatClosesStopsTheWriting)
{
    std::atomic<bool> begun = false;
    std::atomic<bool> stopped = false;
    {
        SignatureSave closing(m_model);
        closing.start([&](const std::stop_token &stop) {
            begun = true;
            const QDeadlineTimer patience(5s);
            while (!stop.stop_requested() && !patience.hasExpired()) {
                std::this_thread::yield();
            }
            stopped = stop.stop_requested();
            QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::black);
            EXPECT_THROW(encodePng(image, stop), OperationCancelled);
            return image;
        });
        EXPECT_TRUE(waitFor([&] { return begun.load(); }));
    }
    EXPECT_TRUE(stopped);
    QCoreApplication::processEvents();
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
    EXPECT_EQ(signature(), QString());
}

TEST_F(Saving, TheReferenceIsTheFrameWithoutItsOldSignature)
{
    PhotoItem item = *m_model.current();
    const HandwritingReference reference = HandwritingReference::of(item);
    EXPECT_EQ(reference.size, QSize(1050, 1400));
    const QRectF photo = CompositionRenderer::photoRect(item, item.settings, reference.size);
    EXPECT_NEAR(reference.focusY, photo.bottom() / 1400, 1e-9);
    const QImage plain = reference.render(m_pipeline, item).result();
    EXPECT_EQ(plain.size(), reference.size);
    write({100, 60}, {400, 60});
    EXPECT_EQ(save(m_studio), QString());
    EXPECT_EQ(reference.render(m_pipeline, *m_model.current()).result(), plain);
}

} // namespace
} // namespace tarnovel::test
