#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>

class QPainter;

namespace tarnovel::app {

/// The colours of the interface in one appearance.
struct Theme {
    bool dark = false;
    /// The eight that every screen is made of.
    QColor canvas;
    QColor surface;
    QColor surfaceMuted;
    QColor ink;
    QColor inkSecondary;
    QColor hairline;
    QColor accent;
    QColor onAccent;
    /// And what follows from them.
    QColor accentHover;
    QColor accentPressed;
    QColor controlLine;
    QColor disabled;
    QColor danger;
    QColor dangerHover;
    QColor onDanger;
    QColor thumb;
    /// One pixel around every frame and thumbnail, so that white shows on white and film on black.
    QColor rim;
    QColor scrim;
    QColor toast;
    QColor onToast;
    /// Over a surface: an active tool, a chosen row, a drop target.
    QColor selection;

    /// Laid over a control's fill.
    QColor hover() const;
    QColor pressed() const;

    static const Theme &light();
    static const Theme &darkness();
};

/// The theme in use. It changes with the palette of the application, which every widget hears of.
const Theme &theme();
void applyTheme(bool dark);

/// A colour of a theme from 0xRRGGBB, opaque.
QColor packedColor(unsigned rgb);

/// The sizes of type.
enum class Type {
    Display,
    Title,
    Heading,
    Body,
    BodyMedium,
    BodyStrong,
    Label,
    Caption,
    CaptionStrong,
    Quote
};

QFont typeFont(Type type);
/// Distance of baselines in pixels.
int lineHeight(Type type);

/// Paint that all controls share. Lengths are logical pixels.
namespace Paint {

void rounded(QPainter &painter, const QRectF &rect, double radius, const QColor &fill);
/// The line lies inside the rectangle.
void outline(QPainter &painter, const QRectF &rect, double radius, const QColor &color, double width = 1);
/// The ring of keyboard focus around a shape: two pixels of `gap`, two of accent.
void focusRing(QPainter &painter, const QRectF &rect, double radius, const QColor &gap);
/// One device pixel thick.
void hairline(QPainter &painter, QPointF from, QPointF to);

} // namespace Paint

} // namespace tarnovel::app
