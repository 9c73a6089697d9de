#include "app/canvas/CanvasMarks.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QFontMetrics>
#include <QPainter>

#include "app/kit/Icons.h"
#include "app/kit/Theme.h"
#include "editor/EditorRules.h"
#include "language/AppLanguage.h"
#include "render/CompositionRenderer.h"

namespace tarnovel::app::CanvasMarks {

namespace {

constexpr double padding = 8;
constexpr double handle = 10;
constexpr double grabRadius = 11;
constexpr double knob = 24;
constexpr double knobGap = 8;
constexpr int guideReach = 24;
constexpr float restingGuide = 0.35F;
/// What can still be seen on a card.
constexpr QSizeF smallestPlaceholder(16, 4);
constexpr double leastOutline = 2;

QRectF padded(const QRectF &box)
{
    return box.adjusted(-padding, -padding, padding, padding);
}

std::array<QPointF, 4> corners(const QRectF &box)
{
    const QRectF outer = padded(box);
    return {outer.topLeft(), outer.topRight(), outer.bottomLeft(), outer.bottomRight()};
}

QPointF knobCentre(const QRectF &box)
{
    return {padded(box).right() + knobGap + knob / 2, box.center().y()};
}

/// Marks lie on the picture, which does not follow the theme.
const Theme &marks()
{
    return Theme::light();
}

void paintPill(QPainter &painter, QPointF bottomCentre)
{
    const QString text = localized({"居中", "Centered", "Centré"});
    const QFont font = typeFont(Type::CaptionStrong);
    const double width = QFontMetrics(font).horizontalAdvance(text) + 18;
    const QRectF pill(bottomCentre.x() - width / 2, bottomCentre.y() - 24, width, 24);
    Paint::rounded(painter, pill, 12, theme().accent);
    painter.setPen(theme().onAccent);
    painter.setFont(font);
    painter.drawText(pill, Qt::AlignCenter, text);
}

} // namespace

void paintNotice(QPainter &painter, const QRectF &frame, const QString &text)
{
    constexpr int iconSize = 16;
    const QFont font = typeFont(Type::Label);
    const double room = std::max(frame.width() - 32, 0.0);
    const QString shown = QFontMetrics(font).elidedText(text, Qt::ElideRight, static_cast<int>(room) - 44);
    const double width = QFontMetrics(font).horizontalAdvance(shown) + 44;
    const QRectF pill(frame.center().x() - width / 2, frame.bottom() - 40, width, 28);
    Paint::rounded(painter, pill, 14, theme().surface);
    Paint::outline(painter, pill, 14, theme().danger);
    Icons::draw(painter, "warn", pill.topLeft() + QPointF(10, 6), iconSize, theme().danger);
    painter.setPen(theme().danger);
    painter.setFont(font);
    painter.drawText(pill.adjusted(32, 0, -10, 0), Qt::AlignVCenter | Qt::AlignLeft, shown);
}

void paintGuides(QPainter &painter, const QRectF &frame, CentreSnap snap)
{
    const auto color = [](bool held) {
        QColor line = theme().accent;
        line.setAlphaF(held ? 1 : restingGuide);
        return line;
    };
    const QPointF centre(qRound(frame.center().x()), qRound(frame.center().y()));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(QRectF(centre.x(), frame.top() - guideReach, 1, frame.height() + 2 * guideReach),
                     color(snap.x));
    painter.fillRect(QRectF(frame.left() - guideReach, centre.y(), frame.width() + 2 * guideReach, 1),
                     color(snap.y));
    if (snap.x) {
        paintPill(painter, {centre.x() + 0.5, frame.top() - guideReach + 12});
    } else if (snap.y) {
        paintPill(painter, {frame.left() - guideReach + 20, centre.y() + 12});
    }
}

QRegion guideRegion(const QRectF &frame)
{
    constexpr int pillWidth = 120;
    constexpr int pillHeight = 32;
    const QRect whole = frame.toAlignedRect().adjusted(-guideReach, -guideReach, guideReach, guideReach);
    QRegion region(QRect(whole.center().x() - 2, whole.top(), 5, whole.height()));
    region += QRect(whole.left(), whole.center().y() - 2, whole.width(), 5);
    region += QRect(whole.center().x() - pillWidth / 2, whole.top() - pillHeight / 2, pillWidth, pillHeight);
    region += QRect(whole.left() - pillWidth / 2, whole.center().y() - pillHeight / 2, pillWidth, pillHeight);
    return region;
}

void paintPlaceholders(QPainter &painter, const FrameSettings &settings, const QRectF &frame,
                       const QImage &ground, Naming naming)
{
    const bool named = naming == Naming::Full;
    QList<QRectF> drawn;
    for (const TextLayer &layer : settings.layers) {
        if (!Placeholders::isWanted(layer)) {
            continue;
        }
        TextLayer shown = Placeholders::shown(layer, frame.size());
        shown.size = named ? shown.size : layer.size;
        const QRectF text = CompositionRenderer::textRect(shown, frame.size());
        const QPoint pixel = (text.center() * ground.width() / frame.width()).toPoint();
        const bool dark = ground.rect().contains(pixel) && ground.pixelColor(pixel).lightness() < 128;
        QColor color = dark ? QColor(Qt::white) : marks().disabled;
        color.setAlphaF(dark ? 0.55F : 1.F);
        QPen pen(color, 1);
        pen.setDashPattern(named ? QList<qreal>{4, 3} : QList<qreal>{2, 2});
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(frame.topLeft() + text.center());
        painter.rotate(layer.rotation.value_or(0));
        const QSizeF size = named ? text.size() + QSizeF(24, 4) : text.size().expandedTo(smallestPlaceholder);
        const QRectF box(QPointF(-size.width() / 2, -size.height() / 2), size);
        QRectF outline = QRectF(box.toAlignedRect()).adjusted(0.5, 0.5, -0.5, -0.5);
        // Lines that lie closer than their outlines part at the upper one's edge.
        for (const QRectF &above : std::as_const(drawn)) {
            const QRectF there = above.translated(-text.center());
            if (!layer.rotation && there.intersects(outline)) {
                outline.setTop(std::max(outline.top(), there.bottom() + 1));
            }
        }
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        if (outline.height() >= leastOutline) {
            painter.drawRoundedRect(outline, named ? 2 : 0, named ? 2 : 0);
            drawn.append(outline.translated(text.center()));
        }
        if (named) {
            painter.setFont(CompositionRenderer::font(shown, frame.width()));
            painter.drawText(box, Qt::AlignCenter | Qt::TextDontClip, shown.text);
        }
        painter.restore();
    }
}

QImage withPlaceholders(QImage picture, const FrameSettings &settings, double ratio)
{
    if (picture.isNull() || std::ranges::none_of(settings.layers, Placeholders::isWanted)) {
        return picture;
    }
    const QImage ground = picture;
    picture = std::move(picture).convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.scale(ratio, ratio);
    paintPlaceholders(painter, settings, {QPointF(), QSizeF(picture.size()) / ratio}, ground, Naming::Dashes);
    return picture;
}

void paintSelection(QPainter &painter, const QRectF &box, bool keyboard)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = marks().accent;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(accent, keyboard ? 2.5 : 1.5));
    painter.drawRect(padded(box));
    painter.setPen(QPen(accent, 1.5));
    painter.setBrush(Qt::white);
    for (const QPointF &corner : corners(box)) {
        painter.drawEllipse(corner, handle / 2, handle / 2);
    }
    painter.drawEllipse(knobCentre(box), knob / 2, knob / 2);
    constexpr int icon = 14;
    painter.drawPixmap(QRectF(knobCentre(box) - QPointF(icon / 2.0, icon / 2.0), QSizeF(icon, icon)),
                       Icons::pixmap("rotate", icon, accent, 2 * painter.device()->devicePixelRatioF()),
                       QRectF(QPointF(), QSizeF(icon, icon) * 2 * painter.device()->devicePixelRatioF()));
}

QRectF selectionBounds(const QRectF &box)
{
    const double beside = handle + 2;
    return padded(box).adjusted(-beside, -std::max(beside, knob), knobGap + knob + beside,
                                std::max(beside, knob));
}

Handle handleAt(QPointF position, const QRectF &box)
{
    if (QLineF(position, knobCentre(box)).length() <= knob / 2 + 2) {
        return Handle::Knob;
    }
    for (const QPointF &corner : corners(box)) {
        if (QLineF(position, corner).length() <= grabRadius) {
            return Handle::Corner;
        }
    }
    return Handle::None;
}

} // namespace tarnovel::app::CanvasMarks
