#include "app/window/FilmStrip.h"

#include <algorithm>
#include <cmath>

#include <QBoxLayout>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Press.h"
#include "app/kit/Spinner.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int stripHeight = 120;
constexpr int tileHeight = 64;
constexpr int widestTile = 96;
constexpr int gap = 12;
constexpr int sideInset = 24;
constexpr int addWidth = 48;
constexpr int ringMargin = 4;

} // namespace

StripView::StripView(const EditorContext &context) : ItemView(Arrows::Choose), m_context(context)
{
    setFixedHeight(tileHeight + 2 * ringMargin + 4);
    setName(said({"照片", "Photos", "Photos"}));
    layOut();
    connect(&context.model, &EditorModel::changed, this, [this](EditorModel::Changes changes) {
        if (changes &
            (EditorModel::PhotosChanged | EditorModel::SelectionChanged | EditorModel::SettingsChanged)) {
            const QList<int> edges = m_edges;
            layOut();
            if (!(changes & (EditorModel::PhotosChanged | EditorModel::SelectionChanged)) &&
                edges == m_edges) {
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
            Q_EMIT m_context.state.addPhotosAsked();
        } else {
            m_context.model.select(m_context.model.photos().at(index).id);
        }
    });
    connect(this, &ItemView::cursorMoved, this, [this](int index) { reveal(index); });
    connect(this, &ItemView::menuRequested, this, [this](int index) {
        if (!isAddTile(index)) {
            m_context.model.select(m_context.model.photos().at(index).id);
            Q_EMIT m_context.state.removeAsked();
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

void StripView::layOut()
{
    m_edges.clear();
    int x = sideInset;
    for (const PhotoItem &photo : m_context.model.photos()) {
        m_edges.append(x);
        x += widthOf(photo) + gap;
    }
    m_edges.append(x);
    m_edges.append(x + addWidth + gap);
    scrollTo(m_offset);
}

QRect StripView::itemRect(int index) const
{
    if (index + 1 >= m_edges.size()) {
        return {};
    }
    const int left = m_edges.at(index);
    return {left - m_offset, ringMargin + 2, m_edges.at(index + 1) - left - gap, tileHeight};
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

void StripView::scrollTo(int offset)
{
    const int most = std::max((m_edges.isEmpty() ? 0 : m_edges.last()) - gap + sideInset - width(), 0);
    const int held = std::clamp(offset, 0, most);
    if (held != m_offset) {
        m_offset = held;
        update();
    }
}

void StripView::reveal(int index)
{
    if (index < 0 || index + 1 >= m_edges.size()) {
        return;
    }
    const QRect tile = itemRect(index);
    if (tile.left() < sideInset) {
        scrollTo(m_offset + tile.left() - sideInset);
    } else if (tile.right() > width() - sideInset) {
        scrollTo(m_offset + tile.right() - width() + sideInset);
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
        ItemView::timerEvent(event);
        return;
    }
    m_angle = (m_angle + Spinner::degreesPerTick) % 360;
    if (m_context.thumbnails.idle()) {
        m_spin.stop();
    }
    update();
}

void StripView::wheelEvent(QWheelEvent *event)
{
    const QPoint pixels = event->pixelDelta();
    const QPoint degrees = event->angleDelta();
    const QPoint delta = pixels.isNull() ? degrees / 2 : pixels;
    scrollTo(m_offset - (std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y()));
    event->accept();
}

void StripView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressed = event->position();
        m_offsetAtPress = m_offset;
        m_dragging = false;
    }
    ItemView::mousePressEvent(event);
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
    ItemView::mouseMoveEvent(event);
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
    ItemView::mouseReleaseEvent(event);
}

void StripView::resizeEvent(QResizeEvent *event)
{
    scrollTo(m_offset);
    reveal(current());
    ItemView::resizeEvent(event);
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
    return ItemView::event(event);
}

FilmStrip::FilmStrip(const EditorContext &context)
    : m_context(context),
      m_name(new Label(Type::BodyStrong, {})),
      m_place(new Label(Type::Body, {}, Label::Tone::Secondary)),
      m_view(new StripView(context)),
      m_remove(new Button(Button::Kind::Ghost,
                          said({"移除这张照片", "Remove this photo", "Retirer cette photo"}), "trash",
                          Button::Face::IconOnly))
{
    setFixedHeight(stripHeight);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 7, 0, 0);
    column->setSpacing(5);
    auto *header = new QHBoxLayout;
    header->setContentsMargins(sideInset, 0, 14, 0);
    header->setSpacing(8);
    for (Label *label : {m_name, m_place}) {
        QFont font = typeFont(Type::Label);
        font.setWeight(label == m_name ? QFont::DemiBold : QFont::Normal);
        label->setFont(font);
        label->setWordWrap(false);
        header->addWidget(label);
    }
    header->addStretch();
    auto *preview =
        new Button(Button::Kind::Ghost, said({"套图预览", "Preview set", "Aperçu de la série"}), "grid");
    preview->setHint(
        said({"像帖子一样预览整组照片，拖动可排序", "Preview the set like a post and drag to reorder",
              "Prévisualiser la série comme un post et la réordonner"}));
    auto *manage = new Button(Button::Kind::Ghost, said({"管理", "Manage", "Gérer"}), "manage");
    m_remove->setKeyHint(localized({"Delete", "Delete", "Suppr"}));
    for (Button *button : {preview, manage, m_remove}) {
        button->setHeight(28);
        button->setIconSizePx(16);
        button->setFont(typeFont(Type::Label));
        header->addWidget(button);
    }
    preview->setObjectName(u"previewSet"_s);
    manage->setObjectName(u"managePhotos"_s);
    column->addLayout(header);
    column->addWidget(m_view);
    column->addStretch();
    connect(preview, &QPushButton::clicked, this, &FilmStrip::previewSetAsked);
    connect(manage, &QPushButton::clicked, this, &FilmStrip::manageAsked);
    connect(m_remove, &QPushButton::clicked, &context.state, &EditorState::removeAsked);
    connect(&context.model, &EditorModel::changed, this, &FilmStrip::showPhoto);
    showPhoto();
}

QWidget *FilmStrip::removeButton() const
{
    return m_remove;
}

void FilmStrip::showPhoto()
{
    const PhotoItem *photo = m_context.model.current();
    const qsizetype count = m_context.model.photos().size();
    const qsizetype index = photo ? photo - m_context.model.photos().constData() : -1;
    m_name->setPhrase([this, name = photo ? photo->name : QString()] {
        return m_name->fontMetrics().elidedText(name, Qt::ElideMiddle, 280);
    });
    m_place->setPhrase([index, count] {
        return index < 0 ? QString()
                         : localized({"第 ", "", ""}) + QString::number(index + 1) +
                               localized({" 张，共 ", " of ", " sur "}) + QString::number(count) +
                               localized({" 张", "", ""});
    });
    m_remove->setEnabled(photo);
}

void FilmStrip::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_remove->setKeyHint(localized({"Delete", "Delete", "Suppr"}));
        showPhoto();
    }
    QWidget::changeEvent(event);
}

void FilmStrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(0, 0), QPointF(width(), 0));
}

} // namespace tarnovel::app
