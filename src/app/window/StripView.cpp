#include "app/window/StripView.h"

#include <algorithm>
#include <cmath>

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include "app/kit/Icons.h"
#include "app/kit/Press.h"
#include "app/kit/Spinner.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int tileHeight = 64;
constexpr int widestTile = 96;
constexpr int gap = 12;
constexpr int addWidth = 48;
constexpr int ringMargin = 4;

/// A mark at the corner of a frame that lacks one of its pictures.
void paintBadge(QPainter &painter, const QRect &tile)
{
    constexpr int size = 18;
    const QRectF badge(tile.right() - size / 2.0 - 2, tile.top() - 4, size, size);
    Paint::rounded(painter, badge, size / 2.0, theme().danger);
    painter.setFont(typeFont(Type::Label));
    painter.setPen(theme().onDanger);
    painter.drawText(badge, Qt::AlignCenter, u"!"_s);
}

} // namespace

StripView::StripView(const PhotosContext &context, EditorState &state)
    : ItemStrip(Arrows::Choose), m_context(context), m_state(state)
{
    setFixedHeight(tileHeight + 2 * ringMargin + 4);
    setName(said({"照片", "Photos", "Photos"}));
    layOut();
    connect(&context.model, &EditorModel::changed, this, [this](EditorModel::Changes changes) {
        if (changes &
            (EditorModel::PhotosChanged | EditorModel::SelectionChanged | EditorModel::SettingsChanged)) {
            const bool moved = layOut();
            if (!(changes & (EditorModel::PhotosChanged | EditorModel::SelectionChanged)) && !moved) {
                requestChanged();
                return;
            }
            const QList<PhotoItem> &photos = m_context.model.photos();
            const auto &selected = m_context.model.selected();
            const auto place = selected ? std::ranges::find(photos, *selected, &PhotoItem::id) : photos.end();
            setCurrent(place == photos.end() ? -1 : static_cast<int>(place - photos.begin()));
            if (changes & (EditorModel::PhotosChanged | EditorModel::SelectionChanged) && current() >= 0) {
                setCursorItem(current());
                reveal(current());
            }
            update();
        }
    });
    connect(&context.thumbnails, &Thumbnails::ready, this, [this](const ThumbnailKey &key) {
        const QList<PhotoItem> &photos = m_context.model.photos();
        for (int i = 0; i < photos.size(); ++i) {
            if (key == ThumbnailKey::photo(photos.at(i))) {
                update(itemRect(i).adjusted(-1, -1, 1, 1));
            }
        }
    });
    connect(this, &ItemView::chosen, this, [this](int index) {
        if (isAddTile(index)) {
            Q_EMIT m_state.addPhotosAsked();
        } else {
            m_context.model.select(m_context.model.photos().at(index).id);
        }
    });
    connect(this, &ItemView::menuRequested, this, [this](int index) {
        if (!isAddTile(index)) {
            m_context.model.select(m_context.model.photos().at(index).id);
            Q_EMIT m_state.removeAsked();
        }
    });
}

int StripView::count() const
{
    return static_cast<int>(m_context.model.photos().size()) + 1;
}

bool StripView::isAddTile(int index) const
{
    return index == m_context.model.photos().size();
}

int StripView::widthOf(const PhotoItem &photo) const
{
    const double ratio = std::clamp(photo.settings.ratio(photo.size()), 0.3, 3.0);
    return std::min(qRound(tileHeight * ratio), widestTile);
}

bool StripView::layOut()
{
    QList<int> widths;
    for (const PhotoItem &photo : m_context.model.photos()) {
        widths.append(widthOf(photo));
    }
    widths.append(addWidth);
    return setWidths(widths, gap);
}

QRect StripView::itemRect(int index) const
{
    return placeOf(index, ringMargin + 2, tileHeight);
}

QString StripView::itemName(int index) const
{
    if (isAddTile(index)) {
        return localized({"添加照片", "Add photos", "Ajouter des photos"});
    }
    return localized({"第 ", "Photo ", "Photo "}) + QString::number(index + 1) +
           localized({" 张，共 ", " of ", " sur "}) + QString::number(m_context.model.photos().size()) +
           localized({" 张，", ", ", ", "}) + m_context.model.photos().at(index).name;
}

bool StripView::itemEnabled(int index) const
{
    return !isAddTile(index) || index < EditorModel::mostPhotos;
}

bool StripView::itemChosen(int index) const
{
    return !isAddTile(index) && m_context.model.selected() == m_context.model.photos().at(index).id;
}

QImage StripView::thumbnail(int index) const
{
    const PhotoItem &photo = m_context.model.photos().at(index);
    const QSize room = (QSizeF(widestTile, tileHeight) * devicePixelRatioF()).toSize();
    return m_context.thumbnails.image(ThumbnailKey::photo(photo), photo, room);
}

QRect StripView::pictureRect(int index, const QImage &image) const
{
    const QRect tile = itemRect(index);
    if (image.isNull()) {
        return tile;
    }
    // A frame wider than its tile may be is lower than the strip.
    const QSizeF fitted = QSizeF(image.size()).scaled(QSizeF(tile.size()), Qt::KeepAspectRatio);
    QRect picture(QPoint(), QSize(std::max(qRound(fitted.width()), 1), std::max(qRound(fitted.height()), 1)));
    picture.moveCenter(tile.center());
    return picture;
}

QRect StripView::pictureRect(int index) const
{
    return isAddTile(index) ? itemRect(index) : pictureRect(index, thumbnail(index));
}

void StripView::requestChanged()
{
    for (int i = 0; i + 1 < count(); ++i) {
        if (itemRect(i).intersects(rect())) {
            thumbnail(i);
        }
    }
}

void StripView::paintAddTile(QPainter &painter, const QRect &tile, const State &state)
{
    const Theme &look = theme();
    if (state.hovered) {
        Paint::rounded(painter, tile, 4, look.hover());
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(state.enabled ? look.controlLine : look.hairline, 1, Qt::CustomDashLine));
    QPen pen = painter.pen();
    pen.setDashPattern({3, 3});
    painter.setPen(pen);
    painter.drawRoundedRect(QRectF(tile).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    Icons::draw(painter, "plus", tile.center() - QPointF(9.5, 9.5), 20,
                state.enabled ? look.inkSecondary : look.disabled);
    if (state.focused) {
        Paint::outline(painter, QRectF(tile).adjusted(-4, -4, 4, 4), 7, look.accent, 2);
    }
}

void StripView::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    QRect tile = itemRect(index);
    if (isAddTile(index)) {
        paintAddTile(painter, tile, state);
        return;
    }
    const PhotoItem &photo = m_context.model.photos().at(index);
    const QImage image = thumbnail(index);
    tile = pictureRect(index, image);
    if (image.isNull()) {
        Paint::rounded(painter, tile, 4, look.surfaceMuted);
        if (m_context.thumbnails.unreadable(photo.file)) {
            Icons::draw(painter, "warn", tile.center() - QPointF(7.5, 7.5), 16, look.danger);
        } else {
            Spinner::paint(painter, QRectF(tile.center() - QPointF(9.5, 9.5), QSizeF(20, 20)), m_angle,
                           look.inkSecondary);
            if (!m_spin.isActive()) {
                m_spin.start(Spinner::tickMs, this);
            }
        }
    } else {
        QPainterPath corners;
        corners.addRoundedRect(tile, 3, 3);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setClipPath(corners);
        painter.fillRect(tile, look.surface);
        painter.drawImage(tile, image);
        painter.setClipping(false);
        Paint::outline(painter, tile, 3, look.rim);
    }
    if (!image.isNull() && m_context.thumbnails.incomplete(photo)) {
        paintBadge(painter, tile);
    }
    if (state.hovered && !state.chosen) {
        Paint::outline(painter, QRectF(tile).adjusted(-3, -3, 3, 3), 6, look.hairline, 2);
    }
    if (state.chosen) {
        Paint::outline(painter, QRectF(tile).adjusted(-4, -4, 4, 4), 8, look.accent, 2);
    }
    if (state.focused) {
        // Inside the ring of the shown photo, with a gap that parts it from any picture.
        Paint::outline(painter, QRectF(tile).adjusted(-2, -2, 2, 2), 5, look.canvas, 2);
        Paint::outline(painter, tile, 3, look.accent, 2);
        Paint::outline(painter, QRectF(tile).adjusted(2, 2, -2, -2), 2, look.canvas, 1);
    }
}

void StripView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_spin.timerId()) {
        ItemStrip::timerEvent(event);
        return;
    }
    m_angle = (m_angle + Spinner::degreesPerTick) % 360;
    if (m_context.thumbnails.idle()) {
        m_spin.stop();
    }
    update();
}

void StripView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressed = event->position();
        m_offsetAtPress = offset();
        m_dragging = false;
    }
    ItemStrip::mousePressEvent(event);
}

void StripView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_pressed && event->buttons() & Qt::LeftButton) {
        const double way = event->position().x() - m_pressed->x();
        if (!m_dragging && std::abs(way) > Press::takesItem) {
            m_dragging = true;
            cancelPress();
        }
        if (m_dragging) {
            scrollTo(m_offsetAtPress - qRound(way));
            return;
        }
    }
    ItemStrip::mouseMoveEvent(event);
}

void StripView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_pressed.reset();
    if (m_dragging) {
        m_dragging = false;
        return;
    }
    ItemStrip::mouseReleaseEvent(event);
}

void StripView::resizeEvent(QResizeEvent *event)
{
    scrollTo(offset());
    reveal(current());
    ItemStrip::resizeEvent(event);
}

bool StripView::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const int index = itemAt(help->pos());
        if (index >= 0 && isAddTile(index) && !itemEnabled(index)) {
            QToolTip::showText(help->globalPos(),
                               localized({"一次最多编辑 50 张。", "Up to 50 photos per session.",
                                          "50 photos maximum par session."}),
                               this);
        } else if (index >= 0) {
            QToolTip::showText(help->globalPos(),
                               isAddTile(index) ? itemName(index)
                                                : m_context.model.photos().at(index).name.toHtmlEscaped(),
                               this);
        }
        return true;
    }
    return ItemStrip::event(event);
}

} // namespace tarnovel::app
