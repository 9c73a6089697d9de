#include "app/kit/Swatches.h"

#include <algorithm>
#include <utility>

#include <QConicalGradient>
#include <QPainter>

#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int dot = 28;
constexpr int tileHeight = 48;
constexpr int tileGap = 12;
constexpr int margin = 4;

} // namespace

Swatches::Swatches(Shape shape, QWidget *parent) : ItemView(Arrows::Move, parent), m_shape(shape)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &ItemView::chosen, this, [this](int index) {
        if (isWheel(index)) {
            Q_EMIT wheelChosen();
        } else {
            Q_EMIT colorChosen(m_entries.at(index).color);
        }
    });
}

void Swatches::setEntries(QList<Entry> entries)
{
    m_entries = std::move(entries);
    update();
}

void Swatches::setWheel(bool wheel)
{
    m_wheel = wheel;
    update();
}

void Swatches::setColor(const QColor &color)
{
    m_color = color;
    update();
}

QRect Swatches::itemRect(int index) const
{
    if (m_shape == Shape::Tiles) {
        const int tile = (width() - 2 * tileGap) / 3;
        return {index * (tile + tileGap), margin, tile, tileHeight};
    }
    const int room = width() - dot;
    const int step = count() > 1 ? std::min(room / (count() - 1), dot + 14) : 0;
    return {index * step, margin, dot, dot};
}

QSize Swatches::sizeHint() const
{
    return {264, (m_shape == Shape::Tiles ? tileHeight : dot) + 2 * margin};
}

QString Swatches::itemName(int index) const
{
    if (isWheel(index)) {
        return localized({"其他颜色", "Other color", "Autre couleur"});
    }
    const Entry &entry = m_entries.at(index);
    const QString hex = entry.color.name().toUpper();
    return entry.name ? entry.name() + u' ' + hex : hex;
}

bool Swatches::itemChosen(int index) const
{
    if (!m_color.isValid()) {
        return false;
    }
    if (!isWheel(index)) {
        return m_entries.at(index).color.rgb() == m_color.rgb();
    }
    return std::none_of(m_entries.begin(), m_entries.end(),
                        [this](const Entry &entry) { return entry.color.rgb() == m_color.rgb(); });
}

void Swatches::paintItem(QPainter &painter, int index, const State &state)
{
    const QRectF outer = itemRect(index);
    const double radius = m_shape == Shape::Tiles ? 8 : dot / 2.0;
    // The ring of a chosen colour takes the edge, so that the row needs no room around it.
    const bool ringed = state.chosen || state.focused;
    const QRectF box = ringed ? outer.adjusted(4, 4, -4, -4) : outer;
    if (isWheel(index)) {
        QConicalGradient wheel(box.center(), 0);
        for (int i = 0; i <= 6; ++i) {
            wheel.setColorAt(i / 6.0,
                             QColor::fromHsvF(i == 6 ? 0 : static_cast<float>(i) / 6.F, 0.55F, 0.9F));
        }
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(wheel);
        painter.drawEllipse(box);
    } else {
        Paint::rounded(painter, box, ringed ? radius - 4 : radius, m_entries.at(index).color);
        QColor edge = theme().ink;
        edge.setAlphaF(0.18F);
        Paint::outline(painter, box, ringed ? radius - 4 : radius, edge);
    }
    if (ringed) {
        Paint::outline(painter, outer, radius, theme().accent, state.chosen ? 2 : 1);
    } else if (state.hovered) {
        Paint::outline(painter, outer, radius, theme().controlLine, 2);
    }
}

} // namespace tarnovel::app
