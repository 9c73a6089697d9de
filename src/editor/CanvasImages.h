#pragma once

#include <memory>
#include <optional>

#include <QObject>

#include "base/Worker.h"
#include "editor/Clock.h"
#include "editor/PreviewLoader.h"
#include "render/CompositionRenderer.h"

namespace tarnovel {

/// The pictures of the live canvas at the canvas's own pixels. They are resampled on a thread; until they are
/// there, and while something is being dragged or resized, the nearest at hand stand in. New pictures are
/// resampled at once, others as soon as the hand rests.
class CanvasImages : public QObject {
    Q_OBJECT

public:
    explicit CanvasImages(Clock &clock) : m_clock(clock) {}

    /// How long the same has to be asked for before what stands in is replaced.
    static constexpr std::chrono::milliseconds rest{90};

    /// What a canvas of `canvas` device pixels is drawn with now. `changed` follows when better ones are
    /// there.
    CompositionImages images(const PhotoItem &item, QSize canvas, const Previews &previews);

Q_SIGNALS:
    void changed();

private:
    struct Wanted {
        PhotoItem item;
        QSize canvas;
        Previews previews;
    };
    struct Scaled {
        qint64 key = 0;
        QImage image;
    };
    /// Pictures made for one canvas, and what they were made from.
    struct Ready {
        qint64 photoKey = 0;
        PhotoPlacement placement;
        QRect pixels;
        PhotoImage photo;
        Scaled background;
        Scaled logo;
        Scaled signature;
    };
    static Ready make(const Wanted &wanted, Ready old);
    /// What stands in for a picture of the canvas's own pixels.
    enum class AtHand { Exact, Near, Other };
    PhotoImage photoAtHand(const Wanted &wanted, AtHand &quality) const;
    void want(const Wanted &wanted, AtHand quality);
    void begin();

    Clock &m_clock;
    Ready m_ready;
    std::optional<Wanted> m_wanted;
    bool m_running = false;
    std::unique_ptr<PendingCall> m_rest;
    Worker m_worker;
};

} // namespace tarnovel
