#include "app/kit/Segments.h"

#include <algorithm>
#include <utility>

#include <QFontMetrics>
#include <QPainter>

#include "app/kit/Icons.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int rowHeight = 32;
constexpr int tallHeight = 44;
constexpr int inset = 2;
constexpr int iconSize = 16;
constexpr int iconGap = 8;

} // namespace

Segments::Segments(std::vector<Phrase> names, QWidget *parent)
    : ItemView(Arrows::Choose, parent), m_names(std::move(names))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Segments::setNames(std::vector<Phrase> names)
{
    m_names = std::move(names);
    updateGeometry();
    update();
}

void Segments::setIcons(std::vector<const char *> icons)
{
    m_icons = std::move(icons);
    update();
}

QRect Segments::itemRect(int index) const
{
    const int room = width() - 2 * inset;
    const int left = inset + room * index / count();
    const int right = inset + room * (index + 1) / count();
    return {left, inset, right - left, height() - 2 * inset};
}

bool Segments::tall() const
{
    const QFontMetrics metrics(typeFont(Type::BodyStrong));
    const int room = std::max(width(), 240) / std::max(count(), 1) - 8;
    return std::any_of(m_names.begin(), m_names.end(),
                       [&](const Phrase &name) { return metrics.horizontalAdvance(name()) > room; });
}

QSize Segments::sizeHint() const
{
    return {264, tall() ? tallHeight : rowHeight};
}

void Segments::resizeEvent(QResizeEvent *event)
{
    // The height was asked for at another width.
    if (tall() != m_wasTall) {
        m_wasTall = tall();
        updateGeometry();
    }
    ItemView::resizeEvent(event);
}

void Segments::paintGround(QPainter &painter)
{
    Paint::rounded(painter, rect(), 8, theme().surfaceMuted);
}

void Segments::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRectF box = itemRect(index);
    if (state.chosen) {
        if (state.enabled && !look.dark) {
            QColor shade = look.ink;
            shade.setAlphaF(0.12F);
            Paint::rounded(painter, box.translated(0, 1), 6, shade);
        }
        Paint::rounded(painter, box, 6, look.thumb);
    } else if (state.hovered) {
        Paint::rounded(painter, box, 6, state.pressed ? look.pressed() : look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, box, 6, look.accent, 2);
    }
    painter.setFont(typeFont(state.chosen ? Type::BodyStrong : Type::BodyMedium));
    painter.setPen(!state.enabled ? look.disabled : state.chosen ? look.ink : look.inkSecondary);
    QFont font = painter.font();
    if (QFontMetrics(font).horizontalAdvance(itemName(index)) > box.width() - 8) {
        font.setPixelSize(12);
        painter.setFont(font);
    }
    QRectF text = box.adjusted(2, 0, -2, 0);
    if (!m_icons.empty()) {
        const int width = QFontMetrics(font).horizontalAdvance(itemName(index));
        const double left = box.left() + (box.width() - width - iconSize - iconGap) / 2.0;
        Icons::draw(painter, m_icons.at(static_cast<size_t>(index)),
                    QPointF(left, box.top() + (box.height() - iconSize) / 2.0), iconSize,
                    painter.pen().color());
        text = QRectF(left + iconSize + iconGap, box.top(), width + 2, box.height());
    }
    painter.drawText(text, Qt::AlignCenter | Qt::TextWordWrap, itemName(index));
}

} // namespace tarnovel::app
