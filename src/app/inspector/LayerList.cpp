#include "app/inspector/LayerList.h"

#include <algorithm>

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include "app/inspector/Section.h"
#include "app/kit/Icons.h"
#include "app/kit/Theme.h"
#include "editor/EditorRules.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int rowHeight = 36;
constexpr int leastTitleWidth = 68;
constexpr int mostTitleWidth = 104;
constexpr int titleGap = 12;
constexpr int eyeWidth = 32;
constexpr int padding = 8;

QString shown(const TextLayer &layer)
{
    return layer.text.trimmed().isEmpty() ? localized({"未填写", "Empty", "Vide"}) : layer.text.simplified();
}

} // namespace

LayerList::LayerList() : ItemView(Arrows::Choose)
{
    setName(said({"文字图层", "Text layers", "Calques de texte"}));
}

void LayerList::setLayers(const QList<TextLayer> &layers)
{
    const bool resized = layers.size() != m_layers.size();
    m_layers = layers;
    if (resized) {
        setFixedHeight(sizeHint().height());
    }
    update();
}

QRect LayerList::itemRect(int index) const
{
    return {0, index * rowHeight, width(), rowHeight};
}

QRect LayerList::eyeRect(int index) const
{
    return {width() - eyeWidth - 2, index * rowHeight, eyeWidth, rowHeight};
}

QString LayerList::itemName(int index) const
{
    const TextLayer &layer = m_layers.at(index);
    return layerTitle(layer) + u", "_s + shown(layer) + u", "_s +
           (layer.visible ? localized({"显示", "shown", "affiché"})
                          : localized({"隐藏", "hidden", "masqué"}));
}

int LayerList::titleWidth() const
{
    const QFontMetrics metrics(typeFont(Type::Label));
    int widest = leastTitleWidth;
    for (const TextLayer &layer : m_layers) {
        widest = std::max(widest, metrics.horizontalAdvance(layerTitle(layer)) + titleGap);
    }
    return std::min(widest, mostTitleWidth);
}

QSize LayerList::sizeHint() const
{
    return {264, count() * rowHeight};
}

void LayerList::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const TextLayer &layer = m_layers.at(index);
    const QRect row = itemRect(index);
    if (state.chosen) {
        Paint::rounded(painter, row, 8, look.selection);
    } else if (state.hovered) {
        Paint::rounded(painter, row, 8, look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, row, 8, look.accent, 2);
    }
    painter.setFont(typeFont(Type::Label));
    painter.setPen(state.chosen ? look.ink : look.inkSecondary);
    const int titleWidth = this->titleWidth();
    const QRect title = row.adjusted(padding, 0, 0, 0);
    painter.drawText(
        QRect(title.topLeft(), QSize(titleWidth, rowHeight)), Qt::AlignLeft | Qt::AlignVCenter,
        painter.fontMetrics().elidedText(layerTitle(layer), Qt::ElideRight, titleWidth - titleGap));
    painter.setFont(typeFont(state.chosen ? Type::BodyStrong : Type::Body));
    painter.setPen(layer.visible && !layer.text.isEmpty() ? look.ink : look.inkSecondary);
    const QRect room = row.adjusted(padding + titleWidth, 0, -eyeWidth - 4, 0);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(shown(layer), Qt::ElideRight, room.width()));
    const QRect eye = eyeRect(index);
    Icons::draw(painter, layer.visible ? "eye" : "eyeoff", eye.center() - QPointF(7.5, 7.5), 16,
                layer.visible ? look.ink : look.inkSecondary);
}

void LayerList::mousePressEvent(QMouseEvent *event)
{
    const int index = itemAt(event->position().toPoint());
    if (index >= 0 && event->button() == Qt::LeftButton &&
        eyeRect(index).contains(event->position().toPoint())) {
        Q_EMIT visibilityAsked(index);
        return;
    }
    ItemView::mousePressEvent(event);
}

void LayerList::mouseReleaseEvent(QMouseEvent *event)
{
    const int pressed = pressedItem();
    ItemView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && pressed >= 0 && pressed == itemAt(event->position().toPoint())) {
        Q_EMIT rowClicked(pressed);
    }
}

void LayerList::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space && cursor() >= 0) {
        Q_EMIT visibilityAsked(cursor());
        return;
    }
    ItemView::keyPressEvent(event);
}

} // namespace tarnovel::app
