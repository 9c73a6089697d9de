#include "app/collage/LayoutStrip.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <QFontMetrics>
#include <QPainter>
#include <QTimerEvent>

#include "app/kit/Theme.h"
#include "language/AppLanguage.h"

namespace tarnovel::app {

namespace {

constexpr int stripHeight = 128;
constexpr QSizeF thumbnailRoom(120, 66);
constexpr int thumbnailTop = 20;
constexpr int captionTop = 94;
constexpr int captionHeight = 24;
/// Between layouts: as there is room.
constexpr int widestGap = 28;
constexpr int narrowestGap = 12;
constexpr int restMs = 60;
/// Between a thumbnail and the ring of the chosen one.
constexpr int ringGap = 5;

} // namespace

LayoutStrip::LayoutStrip(CollageStudio &studio) : ItemStrip(Arrows::Move), m_studio(studio)
{
    setFixedHeight(stripHeight);
    setName(said({"版式", "Layout", "Mise en page"}));
    connect(&studio, &CollageStudio::changed, this, &LayoutStrip::studioChanged);
    connect(this, &ItemView::chosen, this,
            [this](int index) { m_studio.choosePreset(m_presets.at(index).id); });
    learn();
}

void LayoutStrip::studioChanged(CollageStudio::Changes changes)
{
    if (m_studio.choosing()) {
        return;
    }
    if (changes & (CollageStudio::PhotosChanged | CollageStudio::PhaseChanged)) {
        learn();
    }
    if (changes & (CollageStudio::DesignChanged | CollageStudio::ImagesChanged)) {
        m_rest.start(restMs, this);
    }
}

void LayoutStrip::learn()
{
    m_presets = m_studio.presets();
    m_pictures.clear();
    layOut();
    for (int i = 0; i < count(); ++i) {
        if (itemChosen(i)) {
            setCurrent(i);
            reveal(i);
        }
    }
}

QSizeF LayoutStrip::sizeOf(const CollagePreset &preset) const
{
    const double ratio = std::max(aspectValue(m_studio.design().aspect, preset), 0.2);
    return QSizeF(ratio, 1).scaled(thumbnailRoom, Qt::KeepAspectRatio);
}

void LayoutStrip::layOut()
{
    const QFontMetrics metrics(typeFont(Type::CaptionStrong));
    QList<int> widths;
    for (const CollagePreset &preset : m_presets) {
        const int picture = qRound(sizeOf(preset).width()) + 2 * ringGap;
        widths.append(std::max(picture, metrics.horizontalAdvance(preset.title) + 2));
    }
    const int room = width() - 2 * sideInset;
    const int all = std::accumulate(widths.begin(), widths.end(), 0);
    const int gap = std::clamp((room - all) / std::max(count() - 1, 1), narrowestGap, widestGap);
    const int spare = room - all - gap * std::max(count() - 1, 0);
    setWidths(widths, gap, sideInset + std::max(spare / 2, 0));
    update();
}

QRect LayoutStrip::itemRect(int index) const
{
    return placeOf(index, 8, stripHeight - 16);
}

bool LayoutStrip::itemChosen(int index) const
{
    return m_presets.at(index).id == m_studio.design().preset.id;
}

QPixmap LayoutStrip::picture(const CollagePreset &preset)
{
    if (std::exchange(m_ratio, devicePixelRatioF()) != devicePixelRatioF()) {
        m_pictures.clear();
    }
    QPixmap &made = m_pictures[preset.id];
    if (made.isNull()) {
        const QSizeF size = sizeOf(preset) * m_ratio;
        const CollageView view =
            m_studio.thumbnail(preset, std::max(qRound(std::max(size.width(), size.height())), 1));
        made = QPixmap(view.plan.size);
        QPainter painter(&made);
        view.draw(painter);
        painter.end();
        made.setDevicePixelRatio(m_ratio);
    }
    return made;
}

void LayoutStrip::paintGround(QPainter &painter)
{
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(0, 0), QPointF(width(), 0));
}

void LayoutStrip::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect box = itemRect(index);
    const QPixmap shown = picture(m_presets.at(index));
    const QSizeF size = QSizeF(shown.size()) / m_ratio;
    const auto whole = [this](double length) { return qRound(length * m_ratio) / m_ratio; };
    const QRectF tile(QPointF(whole(box.x() + (box.width() - size.width()) / 2),
                              whole(thumbnailTop + (thumbnailRoom.height() - size.height()) / 2)),
                      size);
    painter.drawPixmap(tile.topLeft(), shown);
    const double pixel = 1 / m_ratio;
    Paint::outline(painter, tile.adjusted(-pixel, -pixel, pixel, pixel), 0, look.rim, pixel);
    const QRectF ring = tile.adjusted(-ringGap, -ringGap, ringGap, ringGap);
    if (state.chosen) {
        Paint::outline(painter, ring, 6, look.accent, 2);
    } else if (state.hovered) {
        Paint::outline(painter, ring, 6, look.hairline, 2);
    }
    if (state.focused) {
        Paint::outline(painter, ring.adjusted(-3, -3, 3, 3), 8, look.accent, state.chosen ? 1 : 2);
    }
    painter.setFont(typeFont(state.chosen ? Type::CaptionStrong : Type::Caption));
    painter.setPen(!state.enabled ? look.disabled : state.chosen ? look.ink : look.inkSecondary);
    painter.drawText(QRect(box.left() - 4, captionTop, box.width() + 8, captionHeight), Qt::AlignCenter,
                     itemName(index));
}

void LayoutStrip::resizeEvent(QResizeEvent *event)
{
    layOut();
    ItemStrip::resizeEvent(event);
}

void LayoutStrip::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_rest.timerId()) {
        ItemStrip::timerEvent(event);
        return;
    }
    m_rest.stop();
    m_pictures.clear();
    layOut();
}

bool LayoutStrip::event(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && !m_studio.choosing()) {
        learn();
    }
    return ItemStrip::event(event);
}

} // namespace tarnovel::app
