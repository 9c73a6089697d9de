#include "app/kit/Theme.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

const Theme *current = &Theme::light();

QColor faded(QColor color, double alpha)
{
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QColor mixed(const QColor &over, double share, const QColor &under)
{
    const auto channel = [share](int top, int bottom) { return qRound(top * share + bottom * (1 - share)); };
    return {channel(over.red(), under.red()), channel(over.green(), under.green()),
            channel(over.blue(), under.blue())};
}

Theme makeLight()
{
    Theme theme;
    theme.canvas = packedColor(0xF4F3F0);
    theme.surface = packedColor(0xFFFFFF);
    theme.surfaceMuted = packedColor(0xEEEDE9);
    theme.ink = packedColor(0x1B1B1A);
    theme.inkSecondary = packedColor(0x6B6A66);
    theme.hairline = packedColor(0xE4E2DD);
    theme.accent = packedColor(0x1F5E4B);
    theme.onAccent = packedColor(0xFFFFFF);
    theme.accentHover = packedColor(0x1B5242);
    theme.accentPressed = packedColor(0x174638);
    theme.controlLine = packedColor(0x858480);
    theme.disabled = packedColor(0xA9A8A4);
    theme.danger = packedColor(0xA63D2D);
    theme.dangerHover = packedColor(0x8F3426);
    theme.onDanger = packedColor(0xFFFFFF);
    theme.thumb = packedColor(0xFFFFFF);
    theme.rim = faded(theme.ink, 0.08);
    theme.scrim = faded(theme.ink, 0.32);
    theme.toast = theme.ink;
    theme.onToast = theme.canvas;
    theme.selection = mixed(theme.accent, 0.10, theme.surface);
    return theme;
}

Theme makeDark()
{
    Theme theme;
    theme.dark = true;
    theme.canvas = packedColor(0x141413);
    theme.surface = packedColor(0x1F1F1D);
    theme.surfaceMuted = packedColor(0x2A2A27);
    theme.ink = packedColor(0xECEAE6);
    theme.inkSecondary = packedColor(0xA3A19C);
    theme.hairline = packedColor(0x34332F);
    theme.accent = packedColor(0x6FB89A);
    theme.onAccent = packedColor(0x0F1A15);
    theme.accentHover = packedColor(0x7FC1A6);
    theme.accentPressed = packedColor(0x8ECAB2);
    theme.controlLine = packedColor(0x75736E);
    theme.disabled = packedColor(0x6A6964);
    theme.danger = packedColor(0xE58B78);
    theme.dangerHover = packedColor(0xEB9E8D);
    theme.onDanger = packedColor(0x1C100D);
    theme.thumb = packedColor(0x383733);
    theme.rim = faded(theme.ink, 0.10);
    theme.scrim = faded(Qt::black, 0.50);
    theme.toast = theme.ink;
    theme.onToast = packedColor(0x1B1B1A);
    theme.selection = mixed(theme.accent, 0.14, theme.surface);
    return theme;
}

QPalette palette(const Theme &theme)
{
    QPalette result(theme.ink, theme.surfaceMuted, theme.hairline, theme.hairline, theme.controlLine,
                    theme.ink, theme.ink, theme.surface, theme.surface);
    result.setColor(QPalette::Highlight, theme.accent);
    result.setColor(QPalette::HighlightedText, theme.onAccent);
    result.setColor(QPalette::PlaceholderText, theme.inkSecondary);
    result.setColor(QPalette::Link, theme.accent);
    result.setColor(QPalette::BrightText, theme.danger);
    result.setColor(QPalette::ToolTipBase, theme.toast);
    result.setColor(QPalette::ToolTipText, theme.onToast);
    result.setColor(QPalette::AlternateBase, theme.canvas);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
        result.setColor(QPalette::Disabled, role, theme.disabled);
    }
    return result;
}

struct Style {
    int pixels;
    int line;
    QFont::Weight weight;
    bool serif = false;
};

Style style(Type type)
{
    switch (type) {
    case Type::Display:
        return {28, 36, QFont::DemiBold};
    case Type::Title:
        return {20, 28, QFont::DemiBold};
    case Type::Heading:
        return {15, 20, QFont::DemiBold};
    case Type::Body:
        return {13, 20, QFont::Normal};
    case Type::BodyMedium:
        return {13, 20, QFont::Medium};
    case Type::BodyStrong:
        return {13, 20, QFont::DemiBold};
    case Type::Label:
        return {12, 16, QFont::Medium};
    case Type::Caption:
        return {11, 16, QFont::Medium};
    case Type::CaptionStrong:
        return {11, 16, QFont::DemiBold};
    case Type::Quote:
        return {17, 28, QFont::Normal, true};
    }
    return {13, 20, QFont::Normal};
}

} // namespace

QColor packedColor(unsigned rgb)
{
    return QColor::fromRgbF(static_cast<float>(rgb >> 16 & 0xFF) / 255.F,
                            static_cast<float>(rgb >> 8 & 0xFF) / 255.F,
                            static_cast<float>(rgb & 0xFF) / 255.F);
}

QColor Theme::hover() const
{
    return faded(ink, dark ? 0.06 : 0.05);
}

QColor Theme::pressed() const
{
    return faded(ink, dark ? 0.11 : 0.10);
}

const Theme &Theme::light()
{
    static const Theme theme = makeLight();
    return theme;
}

const Theme &Theme::darkness()
{
    static const Theme theme = makeDark();
    return theme;
}

const Theme &theme()
{
    return *current;
}

void applyTheme(bool dark)
{
    current = dark ? &Theme::darkness() : &Theme::light();
    QApplication::setPalette(palette(*current));
}

QFont typeFont(Type type)
{
    const Style look = style(type);
    QFont font;
    font.setFamilies(look.serif ? QStringList{u"Noto Serif"_s, u"Noto Serif CJK SC"_s}
                                : QStringList{u"Inter"_s, u"Noto Sans CJK SC"_s});
    font.setPixelSize(look.pixels);
    font.setWeight(look.weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

int lineHeight(Type type)
{
    return style(type).line;
}

namespace Paint {

void rounded(QPainter &painter, const QRectF &rect, double radius, const QColor &fill)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rect, radius, radius);
}

void outline(QPainter &painter, const QRectF &rect, double radius, const QColor &color, double width)
{
    const double inset = width / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), std::max(radius - inset, 0.0),
                            std::max(radius - inset, 0.0));
}

void focusRing(QPainter &painter, const QRectF &rect, double radius, const QColor &gap)
{
    outline(painter, rect.adjusted(-2, -2, 2, 2), radius + 2, gap, 2);
    outline(painter, rect.adjusted(-4, -4, 4, 4), radius + 4, theme().accent, 2);
}

void hairline(QPainter &painter, QPointF from, QPointF to)
{
    const double pixel = 1 / painter.device()->devicePixelRatioF();
    const QRectF line(from, to);
    painter.fillRect(line.width() > line.height() ? QRectF(from, QSizeF(line.width(), pixel))
                                                  : QRectF(from, QSizeF(pixel, line.height())),
                     theme().hairline);
}

} // namespace Paint

} // namespace tarnovel::app
