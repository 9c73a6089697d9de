#include "app/kit/CardGrid.h"

#include <algorithm>
#include <utility>

#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>

#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int captionGap = 4;
constexpr int rowGap = 8;
constexpr int padding = 8;
constexpr int gridWidth = 264;

/// A name in lines under its tile, the last one elided where there are too many.
QStringList captionLines(const QString &name, const QFont &font, int width)
{
    constexpr int most = 3;
    const QFontMetrics metrics(font);
    QTextLayout layout(name, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() == most - 1) {
            lines.append(metrics.elidedText(name.mid(line.textStart()), Qt::ElideRight, width));
            break;
        }
        lines.append(name.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines;
}

} // namespace

void paintFramed(QPainter &painter, const QImage &image, const QRectF &tile, bool shadow)
{
    const double ratio = painter.device()->devicePixelRatioF();
    const QSizeF size = QSizeF(image.size()) / ratio;
    QPointF at(tile.center() - QPointF(size.width() / 2, size.height() / 2));
    at = QPointF(qRound(at.x() * ratio) / ratio, qRound(at.y() * ratio) / ratio);
    const QRectF rect(at, size);
    if (shadow) {
        QColor shade = Qt::black;
        shade.setAlphaF(theme().dark ? 0.30F : 0.10F);
        painter.fillRect(rect.translated(0, 1).adjusted(-0.5, 0, 0.5, 1), shade);
    }
    painter.drawImage(rect, image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    Paint::outline(painter, rect.adjusted(-1 / ratio, -1 / ratio, 1 / ratio, 1 / ratio), 0, theme().rim,
                   1 / ratio);
}

CardGrid::CardGrid(Source source, QSize tile, int columns, QWidget *parent)
    : ItemView(Arrows::Move, parent), m_source(std::move(source)), m_tile(tile), m_columns(columns)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void CardGrid::reload()
{
    m_captionLines.clear();
    updateGeometry();
    update();
}

int CardGrid::captionHeight(int row) const
{
    int height = lineHeight(Type::Caption);
    for (int i = row * m_columns; i < std::min((row + 1) * m_columns, count()); ++i) {
        const QString name = itemName(i);
        auto lines = m_captionLines.constFind(name);
        if (lines == m_captionLines.constEnd()) {
            const QFont font = typeFont(Type::CaptionStrong);
            lines = m_captionLines.insert(name,
                                          static_cast<int>(captionLines(name, font, m_tile.width()).size()));
        }
        height = std::max(height, *lines * lineHeight(Type::Caption));
    }
    return height;
}

int CardGrid::top(int row) const
{
    int y = 4;
    for (int i = 0; i < row; ++i) {
        y += m_tile.height() + captionGap + captionHeight(i) + rowGap;
    }
    return y;
}

QRect CardGrid::itemRect(int index) const
{
    const int row = index / m_columns;
    const int step = m_columns > 1 ? (gridWidth - m_tile.width()) / (m_columns - 1) : 0;
    return {index % m_columns * step, top(row), m_tile.width(),
            m_tile.height() + captionGap + captionHeight(row)};
}

QSize CardGrid::sizeHint() const
{
    const int rows = (count() + m_columns - 1) / m_columns;
    return {gridWidth, rows == 0 ? 0 : top(rows) - rowGap + 4};
}

QSize CardGrid::imageRoomPx() const
{
    return ((QSizeF(m_tile) - QSizeF(2 * padding, 2 * padding)) * devicePixelRatioF()).toSize();
}

void CardGrid::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect whole = itemRect(index);
    const QRectF tile(whole.topLeft(), m_tile);
    // The ring of a chosen card takes the tile's edge, so that no column needs room for it.
    const bool ringed = state.chosen || state.focused;
    const QRectF ground = ringed ? tile.adjusted(4, 4, -4, -4) : tile;
    Paint::rounded(painter, ground, ringed ? 5 : 8, look.surfaceMuted);
    if (state.hovered) {
        Paint::rounded(painter, ground, ringed ? 5 : 8, state.pressed ? look.pressed() : look.hover());
    }
    const QImage image = m_source.image(index, imageRoomPx());
    if (!image.isNull()) {
        paintFramed(painter, image, tile, true);
    }
    if (ringed) {
        Paint::outline(painter, tile, 8, look.accent, state.chosen ? 2 : 1);
    }
    if (state.focused && state.chosen) {
        Paint::outline(painter, tile.adjusted(3, 3, -3, -3), 6, look.accent, 1);
    }
    painter.setFont(typeFont(state.chosen ? Type::CaptionStrong : Type::Caption));
    painter.setPen(state.chosen ? look.ink : look.inkSecondary);
    double y = tile.bottom() + captionGap;
    for (const QString &line : captionLines(itemName(index), painter.font(), m_tile.width())) {
        painter.drawText(QRectF(tile.left(), y, tile.width(), lineHeight(Type::Caption)), Qt::AlignCenter,
                         line);
        y += lineHeight(Type::Caption);
    }
}

bool CardGrid::event(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::StyleChange) {
        reload();
    } else if (event->type() == QEvent::ToolTip) {
        // A name may be too long for its card.
        const auto *help = static_cast<QHelpEvent *>(event);
        const int index = itemAt(help->pos());
        QToolTip::showText(help->globalPos(), index >= 0 ? itemName(index).toHtmlEscaped() : QString(), this);
        return true;
    }
    return ItemView::event(event);
}

} // namespace tarnovel::app
