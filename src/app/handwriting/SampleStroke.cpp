#include "app/handwriting/SampleStroke.h"

#include <cmath>
#include <numbers>

#include <QPainter>

#include "app/kit/Theme.h"
#include "render/CompositionRenderer.h"

namespace tarnovel::app {

namespace {

constexpr int sampleSteps = 48;
constexpr double stepSeconds = 0.008;
constexpr int plateHeight = 36;
/// Ink nearer than this to its ground, in brightness, could not be seen on it.
constexpr double leastDifference = 0.2;
/// Square pixels to a dot.
constexpr double glitterSparseness = 36;
/// Multiples of these spread evenly over a square: the powers of 1 / 1.3247, the plastic ratio.
constexpr double spreadX = 0.7548776662;
constexpr double spreadY = 0.5698402910;

double brightness(const QColor &color)
{
    return 0.299 * color.redF() + 0.587 * color.greenF() + 0.114 * color.blueF();
}

/// A few dots over what is drawn: the page's own glitter is too sparse for a sample.
void strewGlitter(QPainter &painter, QSizeF size)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    painter.setPen(Qt::NoPen);
    const int dots = static_cast<int>(size.width() * size.height() / glitterSparseness);
    for (int i = 1; i <= dots; ++i) {
        const QPointF centre(std::fmod(i * spreadX, 1) * size.width(),
                             std::fmod(i * spreadY, 1) * size.height());
        painter.setBrush(QColor(255, 255, 255, 110 + 25 * (i % 5)));
        const double radius = 0.5 + 0.2 * (i % 4);
        painter.drawEllipse(centre, radius, radius);
    }
}

} // namespace

QImage strokeImage(const InkStroke &stroke, const FinishStyle &style, QSize size, double devicePixelRatio)
{
    const InkDrawing drawing = {std::make_shared<const DryStroke>(stroke)};
    QImage image = InkRenderer::render(drawing, QRectF({0, 0}, size), devicePixelRatio);
    image.setDevicePixelRatio(devicePixelRatio);
    QPainter painter(&image);
    if (style.finish == HandwritingFinish::rainbow) {
        tintRainbow(painter, size);
    } else if (style.finish == HandwritingFinish::glitter) {
        strewGlitter(painter, size);
    }
    painter.end();
    return image;
}

InkStroke waveStroke(InkPen pen, const Ink &color, double width, QSizeF box)
{
    InkStroke stroke{pen, color, width, 1, {}};
    const double inset = width / 2 + 1;
    for (int i = 0; i <= sampleSteps; ++i) {
        const double t = static_cast<double>(i) / sampleSteps;
        const double swing = std::max(0.0, box.height() / 2 - inset) * (1 - 0.55 * t);
        const double y = box.height() / 2 - swing * std::sin(t * 3.5 * std::numbers::pi - 0.6);
        stroke.samples.append({{inset + t * (box.width() - 2 * inset), y}, i * stepSeconds});
    }
    return stroke;
}

WidthSample::WidthSample(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(plateHeight);
}

void WidthSample::display(HandwritingTool tool, const FinishStyle &style, double width)
{
    if (tool == m_tool && style == m_style && width == m_width) {
        return;
    }
    m_tool = tool;
    m_style = style;
    m_width = width;
    update();
}

void WidthSample::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor ink = CompositionRenderer::opaque(m_style.color);
    const std::optional<InkPen> pen = penOf(m_tool);
    QColor plate = theme().surfaceMuted;
    if (pen && m_style.finish != HandwritingFinish::rainbow &&
        std::abs(brightness(plate) - brightness(ink)) < leastDifference) {
        plate = theme().controlLine;
    }
    Paint::rounded(painter, rect(), 8, plate);
    const QPointF middle(width() / 2.0, height() / 2.0);
    if (!pen) {
        const double radius = toolDiameter(m_tool, m_width) / 2;
        painter.setPen(QPen(theme().inkSecondary, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(middle, radius, radius);
        return;
    }
    InkStroke line{*pen, m_style.color, m_width, 1, {}};
    constexpr double inset = 24;
    for (int i = 0; i <= sampleSteps; ++i) {
        const double t = static_cast<double>(i) / sampleSteps;
        line.samples.append({{inset + t * (width() - 2 * inset), middle.y()}, i * stepSeconds});
    }
    painter.drawImage(0, 0, strokeImage(line, m_style, size(), devicePixelRatioF()));
}

} // namespace tarnovel::app
