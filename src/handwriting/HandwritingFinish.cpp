#include "handwriting/HandwritingFinish.h"

#include <algorithm>
#include <cmath>

#include <QLinearGradient>
#include <QPainter>

#include "base/Cancellation.h"
#include "language/AppLanguage.h"
#include "render/CompositionRenderer.h"
#include "render/SoftShadow.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

/// A shadow's blur is the whole width over which it fades; half of that is one standard deviation.
constexpr double sigmaPerBlur = 0.5;
/// The Gaussian ends at three deviations.
constexpr double blurReach = 3 * sigmaPerBlur;

/// The pixels that are not quite transparent, or nothing.
QRect inkedArea(const InkDrawing &drawing, const QImage &image, double scale)
{
    QRectF bounds;
    for (const auto &stroke : drawing) {
        bounds |= stroke->path.bounds;
    }
    const QRectF device(bounds.x() * scale, bounds.y() * scale, bounds.width() * scale,
                        bounds.height() * scale);
    return device.toAlignedRect().adjusted(-1, -1, 1, 1) & image.rect();
}

QImage recolored(const QImage &strokes, const QColor &color)
{
    QImage image = strokes;
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

void drawStar(QPainter &painter, QPointF centre, double scale)
{
    const double arm = std::max(13 * scale, 4.0);
    const double slant = 0.55 * arm;
    const QColor color = QColor::fromRgbF(1, 1, 1, 0.98F);
    painter.setPen(QPen(color, std::max(1.8 * scale, 1.0), Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
    painter.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
    painter.setPen(QPen(color, std::max(scale, 0.7), Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(centre - QPointF(slant, slant), centre + QPointF(slant, slant));
    painter.drawLine(centre - QPointF(slant, -slant), centre + QPointF(slant, -slant));
}

/// The sparkles within the strokes, which are the part `area` of an image of `size`.
QImage sparkles(const QImage &strokes, const QRect &area, QSizeF size, double scale)
{
    QImage layer(area.size(), QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    QPainter painter(&layer);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-area.topLeft());
    const double margin = std::max(13 * scale, 4.0) + 2;
    const QRectF seen = QRectF(area).adjusted(-margin, -margin, margin, margin);
    for (int i = 0; i < sparkleCount; ++i) {
        const Sparkle dot = sparkle(i, size, scale);
        if (!seen.contains(dot.centre)) {
            continue;
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromRgbF(1, 1, 1, static_cast<float>(dot.opacity)));
        painter.drawEllipse(dot.centre, dot.diameter / 2, dot.diameter / 2);
        if (dot.star) {
            drawStar(painter, dot.centre, scale);
        }
    }
    painter.resetTransform();
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, strokes);
    return layer;
}

QImage glittering(const QImage &strokes, const QRect &inked, const QColor &color, double scale,
                  const std::stop_token &stop)
{
    const double glow = std::max(34 * scale, 10.0);
    const double halo = std::max(12 * scale, 4.0);
    const int reach = static_cast<int>(std::ceil(blurReach * glow)) + 1;
    const QRect area = inked.adjusted(-reach, -reach, reach, reach) & strokes.rect();
    const QImage part = strokes.copy(area);
    const QImage colored = recolored(part, color);
    const QImage mask = part.convertToFormat(QImage::Format_Alpha8);
    QColor glowColor = color;
    glowColor.setAlphaF(0.95F);
    throwIfCancelled(stop);
    const QImage glowLayer = softShadow(mask, glow * sigmaPerBlur, glowColor);
    throwIfCancelled(stop);
    const QImage haloLayer = softShadow(mask, halo * sigmaPerBlur, QColor::fromRgbF(1, 1, 1, 0.72F));
    throwIfCancelled(stop);
    const QImage sparkleLayer = sparkles(part, area, strokes.size(), scale);
    throwIfCancelled(stop);

    QImage image(strokes.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    painter.drawImage(area.topLeft(), glowLayer);
    painter.drawImage(area.topLeft(), colored);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setOpacity(0.88);
    painter.drawImage(area.topLeft(), haloLayer);
    painter.drawImage(area.topLeft(), colored);
    painter.setOpacity(1);
    painter.drawImage(area.topLeft(), colored);
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    painter.drawImage(area.topLeft(), sparkleLayer);
    return image;
}

} // namespace

QString handwritingFinishName(HandwritingFinish finish)
{
    switch (finish) {
    case HandwritingFinish::rainbow:
        return u"rainbow"_s;
    case HandwritingFinish::glitter:
        return u"glitter"_s;
    case HandwritingFinish::color:
        break;
    }
    return u"color"_s;
}

std::optional<HandwritingFinish> handwritingFinishFromName(const QString &name)
{
    const auto found = std::ranges::find(handwritingFinishes, name, handwritingFinishName);
    return found == handwritingFinishes.end() ? std::nullopt : std::optional(*found);
}

QString handwritingFinishTitle(HandwritingFinish finish)
{
    switch (finish) {
    case HandwritingFinish::rainbow:
        return localized({"彩虹", "Rainbow", "Arc-en-ciel"});
    case HandwritingFinish::glitter:
        return localized({"闪光", "Glitter", "Paillettes"});
    case HandwritingFinish::color:
        break;
    }
    return localized({"颜色", "Color", "Couleur"});
}

const std::array<QColor, 7> &rainbowColors()
{
    static const std::array<QColor, 7> colors = {
        QColor::fromRgbF(1.0F, 0.38F, 0.62F), QColor::fromRgbF(1.0F, 0.64F, 0.25F),
        QColor::fromRgbF(1.0F, 0.88F, 0.25F), QColor::fromRgbF(0.35F, 0.88F, 0.61F),
        QColor::fromRgbF(0.28F, 0.72F, 1.0F), QColor::fromRgbF(0.69F, 0.44F, 1.0F),
        QColor::fromRgbF(1.0F, 0.42F, 0.78F)};
    return colors;
}

void tintRainbow(QPainter &painter, QSizeF page)
{
    QLinearGradient gradient(0, page.height(), page.width(), 0);
    const auto &colors = rainbowColors();
    for (size_t i = 0; i < colors.size(); ++i) {
        gradient.setColorAt(static_cast<double>(i) / static_cast<double>(colors.size() - 1), colors[i]);
    }
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRectF({0, 0}, page), gradient);
    painter.restore();
}

Sparkle sparkle(int index, QSizeF imageSize, double scale)
{
    return {
        {(83 * index % 997) / 997.0 * imageSize.width(), (191 * index % 991) / 991.0 * imageSize.height()},
        std::max(scale, 0.8) * (index % 6 + 1.2),
        0.5 + 0.12 * (index % 5),
        index % 23 == 0};
}

QImage finishedImage(const InkDrawing &drawing, const FinishStyle &style, QSizeF referenceSize, double scale,
                     const std::stop_token &stop)
{
    if (drawing.isEmpty()) {
        return {};
    }
    QImage strokes = InkRenderer::render(drawing, QRectF({0, 0}, referenceSize), scale, stop);
    throwIfCancelled(stop);
    const QColor color = CompositionRenderer::opaque(style.color);
    switch (style.finish) {
    case HandwritingFinish::glitter:
        return glittering(strokes, inkedArea(drawing, strokes, scale), color, scale, stop);
    case HandwritingFinish::rainbow: {
        QPainter painter(&strokes);
        tintRainbow(painter, strokes.size());
        break;
    }
    case HandwritingFinish::color:
        return recolored(strokes, color);
    }
    return strokes;
}

} // namespace tarnovel
