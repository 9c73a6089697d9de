#pragma once

#include <array>
#include <functional>
#include <optional>
#include <utility>

#include <QPointF>
#include <QSizeF>
#include <QString>

#include "editor/Clock.h"
#include "model/FrameSettings.h"

namespace tarnovel {

class EditorModel;

/// Joins the changes of one slider into one undo step.
class SliderCheckpoints {
public:
    /// `begin` takes the checkpoint of a step.
    SliderCheckpoints(std::function<void()> begin, Clock &clock) : m_begin(std::move(begin)), m_clock(clock)
    {
    }
    SliderCheckpoints(EditorModel &model, Clock &clock);

    /// To be called before each change that the control `key` makes: a new step begins with another control,
    /// when more than a second has passed since the last change, and when a step was taken or undone
    /// meanwhile.
    void change(const QString &key);
    /// The next change begins a new step.
    void end() { m_key.clear(); }

private:
    std::function<void()> m_begin;
    /// Where other steps can come between, what changes with each of them.
    std::function<int()> m_steps;
    int m_stepsThen = 0;
    Clock &m_clock;
    QString m_key;
    std::chrono::milliseconds m_time{};
};

/// What the screens let a layer be; records may hold more.
namespace LayerLimits {

/// Heights as fractions of the canvas's width.
constexpr double smallest = 0.005;
constexpr double largest = 0.2;
/// Degrees within which a turned layer holds to a right angle.
constexpr double rotationSnap = 3;

} // namespace LayerLimits

/// The capture date as the user types it.
namespace CaptureDateEntry {

/// "No capture date found…", for a photo without one.
QString absentNotice();
/// "Enter a valid date…"
QString invalidNotice();

/// Writes the date into the selected photo's date text, as one step. False, with nothing changed, for
/// anything but a date written year.month.day.
bool enter(EditorModel &model, const QString &text);

} // namespace CaptureDateEntry

/// The nine places of a layer, row by row.
enum class QuickPosition {
    TopLeft,
    TopCenter,
    TopRight,
    CenterLeft,
    Center,
    CenterRight,
    BottomLeft,
    BottomCenter,
    BottomRight
};

namespace QuickPositions {

constexpr std::array<QuickPosition, 9> all = {
    QuickPosition::TopLeft,    QuickPosition::TopCenter,    QuickPosition::TopRight,
    QuickPosition::CenterLeft, QuickPosition::Center,       QuickPosition::CenterRight,
    QuickPosition::BottomLeft, QuickPosition::BottomCenter, QuickPosition::BottomRight};

/// In the current language.
QString title(QuickPosition position);

/// Where the layer's centre goes, as fractions of the canvas: a margin of 6 % of the canvas's width is kept
/// on all sides.
QPointF place(QuickPosition position, const TextLayer &layer, QSizeF canvas);

} // namespace QuickPositions

/// What the user reads for a layer, in the current language.
QString layerTitle(const TextLayer &layer);

/// On the stage, a text that is to be seen but is still empty shows its name in its own place. Nothing that
/// is exported knows of it.
namespace Placeholders {

bool isWanted(const TextLayer &layer);
/// The layer as the stage shows it on a canvas of this size: an empty one with its name for a text, at a size
/// that can be read; any other as it is.
TextLayer shown(const TextLayer &layer, QSizeF canvas);

} // namespace Placeholders

/// The questions before something is removed.
namespace Confirmations {

QString removePhoto();
QString clearAll();

} // namespace Confirmations

} // namespace tarnovel
