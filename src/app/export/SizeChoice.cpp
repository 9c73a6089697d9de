#include "app/export/SizeChoice.h"

#include <QPainter>

#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int rowHeight = 40;
constexpr int padding = 4;
constexpr int radio = 20;

} // namespace

SizeChoice::SizeChoice() : ItemView(Arrows::Choose)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SizeChoice::setRows(const QList<Row> &rows)
{
    m_rows = rows;
    updateGeometry();
    update();
}

QRect SizeChoice::itemRect(int index) const
{
    return {padding, padding + index * rowHeight, width() - 2 * padding, rowHeight};
}

QString SizeChoice::itemName(int index) const
{
    return m_rows.at(index).label + u", "_s + m_rows.at(index).value;
}

QSize SizeChoice::sizeHint() const
{
    return {336, 2 * padding + static_cast<int>(m_rows.size()) * rowHeight};
}

void SizeChoice::paintGround(QPainter &painter)
{
    Paint::rounded(painter, rect(), 8, theme().surfaceMuted);
}

void SizeChoice::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const Row &row = m_rows.at(index);
    const QRectF box = itemRect(index);
    if (state.chosen && state.enabled) {
        Paint::rounded(painter, box, 6, look.thumb);
    } else if (state.hovered) {
        Paint::rounded(painter, box, 6, state.pressed ? look.pressed() : look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, box, 6, look.accent, 2);
    }
    const QRectF ring(box.left() + 8, box.center().y() - radio / 2.0, radio, radio);
    QColor line = state.chosen ? look.accent : look.controlLine;
    if (!state.enabled) {
        line.setAlphaF(0.5F);
    }
    if (state.chosen) {
        Paint::rounded(painter, ring, radio / 2.0, line);
        Paint::rounded(painter, ring.adjusted(6, 6, -6, -6), 4, look.onAccent);
    } else {
        Paint::outline(painter, ring, radio / 2.0, line, 1.5);
    }
    painter.setFont(typeFont(state.chosen ? Type::BodyMedium : Type::Body));
    painter.setPen(state.enabled ? look.ink : look.disabled);
    painter.drawText(box.adjusted(40, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, row.label);
    painter.setFont(typeFont(Type::Label));
    painter.setPen(!state.enabled ? look.disabled : row.danger ? look.danger : look.inkSecondary);
    painter.drawText(box.adjusted(0, 0, -12, 0), Qt::AlignRight | Qt::AlignVCenter, row.value);
}

} // namespace tarnovel::app
