// What a report of a tablet pen costs from its arrival at the window to the repainted pixels, with a full
// page of dry strokes, at two device pixels to a logical one.

#include <algorithm>
#include <chrono>
#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include "app/handwriting/InkCanvas.h"
#include "editor/EditorModel.h"
#include "support/ProcessorTime.h"
#include "support/RecordedSignature.h"

namespace tarnovel::bench {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

constexpr QSize referencePixels(1050, 1400);
/// A window of 1440 × 920 less its bars.
constexpr QSize stage(1440, 720);
constexpr qsizetype strokesOnPage = 200;
/// Times the fitted page.
constexpr double zoom = 2;
const QPointF place(200, 500);

constexpr std::array names = {"signature", "fountain", "pencil", "marker"};

/// The page in a window, and the pen over it.
class Desk {
public:
    explicit Desk(HandwritingTool tool)
    {
        QImage reference(referencePixels, QImage::Format_RGB32);
        reference.fill(Qt::white);
        m_canvas.resize(stage);
        m_canvas.show();
        m_canvas.setStudio(&m_studio);
        m_canvas.setReference(reference);
        m_studio.setTool(tool);
        for (qsizetype i = 0; i < strokesOnPage; ++i) {
            const QPointF offset(static_cast<double>(i * 83 % 430), static_cast<double>(i * 191 % 1150));
            QList<InkSample> stroke = m_recording.at(i % m_recording.size());
            for (InkSample &sample : stroke) {
                sample.position += offset;
            }
            m_studio.penDown(stroke.first());
            for (const InkSample &sample : stroke) {
                m_studio.penMove(sample);
            }
            m_studio.penUp(stroke.last());
        }
        m_studio.zoomTo(zoom * m_studio.viewport().minimumZoom(), QRectF(m_canvas.rect()).center());
        QApplication::processEvents();
        QObject::connect(&m_studio, &HandwritingController::inkChanged, &m_canvas,
                         [this](const QRect &pixels) { m_changed |= pixels; });
    }

    /// Writes the signature, and takes it back as a second finger does.
    void replay()
    {
        for (const QList<InkSample> &stroke : m_recording) {
            report(QEvent::TabletPress, stroke.first());
            for (const InkSample &sample : stroke) {
                m_changed = {};
                const auto before = std::chrono::steady_clock::now();
                report(QEvent::TabletMove, sample);
                const double ratio = m_canvas.devicePixelRatioF();
                m_canvas.repaint(
                    QRectF(QPointF(m_changed.topLeft()) / ratio, QSizeF(m_changed.size()) / ratio)
                        .toAlignedRect());
                const std::chrono::duration<double, std::milli> spent =
                    std::chrono::steady_clock::now() - before;
                m_spent.push_back(spent.count());
                m_pixels += static_cast<double>(m_changed.width()) * m_changed.height();
            }
            m_studio.penCancel();
            report(QEvent::TabletRelease, stroke.last());
        }
        m_canvas.repaint();
    }

    void wholeView() { m_canvas.repaint(); }

    double percentile(double part)
    {
        std::sort(m_spent.begin(), m_spent.end());
        return m_spent.at(static_cast<size_t>(part * static_cast<double>(m_spent.size() - 1)));
    }
    double meanPixels() const { return m_pixels / static_cast<double>(m_spent.size()); }
    bool measured() const { return !m_spent.empty(); }
    double ratio() const { return m_canvas.devicePixelRatioF(); }

private:
    void report(QEvent::Type type, const InkSample &sample)
    {
        const QPointF at = m_studio.viewport().toView(place + sample.position);
        QTabletEvent event(type, &m_pen, at, m_canvas.mapToGlobal(at), sample.pressure.value_or(0.5), 0, 0, 0,
                           0, 0, {}, Qt::LeftButton,
                           type == QEvent::TabletRelease ? Qt::NoButton : Qt::LeftButton);
        event.setTimestamp(static_cast<quint64>(sample.seconds * 1000));
        QApplication::sendEvent(&m_canvas, &event);
    }

    QList<QList<InkSample>> m_recording =
        test::recordedSignature(TARNOVEL_SOURCE_DIR "/samples/signature.txt");
    QTemporaryDir m_folder;
    Preferences m_preferences{m_folder.filePath(u"preferences.ini"_s)};
    ImagePipeline m_pipeline{m_folder.path(), m_folder.filePath(u"exports"_s)};
    SessionWriter m_writer{m_folder.path()};
    SystemClock m_clock;
    EditorModel m_model{{m_pipeline, m_writer, m_preferences, m_clock, m_folder.path()},
                        EditorModel::Load::StoredSession};
    HandwritingController m_studio{m_model, m_clock, referencePixels, 0.9};
    EditorState m_state;
    InkCanvas m_canvas{m_state};
    QPointingDevice m_pen{u"pen"_s,
                          1,
                          QInputDevice::DeviceType::Stylus,
                          QPointingDevice::PointerType::Pen,
                          QInputDevice::Capability::Position | QInputDevice::Capability::Pressure,
                          1,
                          3};
    QRect m_changed;
    std::vector<double> m_spent;
    double m_pixels = 0;
};

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    using namespace tarnovel;
    using namespace tarnovel::bench;
    qputenv("QT_SCALE_FACTOR", "2");
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    std::vector<std::unique_ptr<Desk>> desks;
    for (size_t i = 0; i < names.size(); ++i) {
        desks.push_back(std::make_unique<Desk>(handwritingTools.at(i)));
        Desk *desk = desks.back().get();
        add(std::string(names.at(i)) + "_events", [desk] { desk->replay(); });
        add(std::string(names.at(i)) + "_repaint", [desk] { desk->wholeView(); });
    }
    benchmark::RunSpecifiedBenchmarks();

    std::printf("\nProcessor time: the handwriting page, 200 strokes on it, device ratio %.0f\n",
                desks.front()->ratio());
    for (size_t i = 0; i < names.size(); ++i) {
        Desk &desk = *desks.at(i);
        if (desk.measured()) {
            std::printf("%-9s  a pen event to the painted window %.3f ms, 95 %% %.3f, all %.3f (budget 8), "
                        "%.0f pixels; whole window %.1f ms\n",
                        names.at(i), desk.percentile(0.5), desk.percentile(0.95), desk.percentile(1),
                        desk.meanPixels(), medianMs(std::string(names.at(i)) + "_repaint"));
        }
    }
    return 0;
}
