#pragma once

#include <optional>

#include <QPointF>
#include <QString>

#include "collage/CollageStudio.h"

namespace tarnovel {

/// The moves on the collage's board as positions: what dragging a divider or a photo and pinching do. Each
/// gesture is one undo step, begun by its first change. Lengths are in points, positions from the board's
/// upper left corner.
class CollageGestures {
public:
    explicit CollageGestures(CollageStudio &studio) : m_studio(studio) {}

    /// Half the width of a divider's hit area.
    static constexpr double dividerReach = 12;
    /// The nearest divider under the point.
    std::optional<CollageDivider> dividerAt(QPointF point) const;
    /// Takes hold of the divider under the point; false when there is none.
    bool grabDivider(QPointF point);
    void dragDivider(QPointF point);
    void releaseDivider();
    /// The id of the divider in hand.
    const std::optional<QString> &activeDivider() const { return m_divider; }
    /// The read-out while a divider is dragged.
    const std::optional<QString> &ratioLabel() const { return m_ratioLabel; }
    bool snapped() const { return m_snapped; }
    /// With the arrow keys, without snapping, by a share of the split's length. Returns the new read-out.
    QString nudgeDivider(const QString &id, double share);

    /// A drag shorter than this is a click.
    static constexpr double panThreshold = 4;
    /// `translation` is how far the finger has gone since the gesture began.
    void panPhoto(int slot, QPointF translation);
    void endPan() { m_pan.reset(); }
    /// With the arrow keys; steps in quick succession are one.
    void nudgePhoto(int slot, QPointF translation);

    /// `magnification` is relative to the gesture's beginning. What lies at `anchor` stays there; without one
    /// the cell's pan stays.
    void pinchPhoto(int slot, double magnification, std::optional<QPointF> anchor = {});
    void endPinch() { m_pinch.reset(); }
    /// With the wheel or keys; steps in quick succession are one.
    void zoomPhoto(int slot, double factor, std::optional<QPointF> anchor = {});

private:
    struct Start {
        int slot = 0;
        CollageCell cell;
    };

    std::optional<CollageDivider> divider(const QString &id) const;
    bool hasCell(int slot) const;
    bool began(const std::optional<Start> &gesture, int slot) const;
    /// The cell with its photo moved.
    CollageCell moved(int slot, const CollageCell &from, QPointF translation,
                      CollageEdits::CentrePull pull) const;
    CollageCell zoomed(int slot, const CollageCell &from, double factor, std::optional<QPointF> anchor) const;
    /// Whether the gesture at hand has been undone, or cut short by another step.
    bool over(bool begun) const;
    void begin(bool &begun);
    void setCell(int slot, const CollageCell &cell, bool &begun);

    CollageStudio &m_studio;
    std::optional<QString> m_divider;
    /// Where and at which ratio the divider was taken hold of.
    QPointF m_grabbedAt;
    double m_ratioThen = 0.5;
    std::optional<QString> m_ratioLabel;
    bool m_snapped = false;
    bool m_dividerBegun = false;
    int m_stepsThen = 0;
    std::optional<Start> m_pan;
    bool m_panBegun = false;
    std::optional<Start> m_pinch;
    bool m_pinchBegun = false;
};

} // namespace tarnovel
