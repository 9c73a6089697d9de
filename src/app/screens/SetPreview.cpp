#include "app/screens/SetPreview.h"

#include <algorithm>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Press.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"
#include "app/screens/PageBar.h"
#include "language/Plural.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int columns = 3;
constexpr int usualColumn = 176;
constexpr int gap = 4;
constexpr int coverWidth = 440;
constexpr int cardWidth = 584;
constexpr int leastCover = 320;
/// Of the window.
constexpr int narrowWidth = 1100;
constexpr int cardPadding = 24;
constexpr double liftedDegrees = 2;
constexpr int manyDots = 20;

QImage thumbnail(const PhotosContext &context, const PhotoItem &photo, QSize roomPx)
{
    return context.thumbnails.image(ThumbnailKey::photo(photo), photo, roomPx);
}

/// `image` cut to cover `box`, as a post does with pictures of another ratio than the cover's.
void drawCovering(QPainter &painter, const QImage &image, const QRectF &box)
{
    const QSizeF cut = box.size().scaled(QSizeF(image.size()), Qt::KeepAspectRatio);
    const QRectF part(QPointF((image.width() - cut.width()) / 2, (image.height() - cut.height()) / 2), cut);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(box, image, part);
}

double coverRatio(const EditorModel &model)
{
    if (model.photos().isEmpty()) {
        return 0.75;
    }
    const PhotoItem &first = model.photos().first();
    return std::clamp(first.settings.ratio(first.size()), 0.5, 2.0);
}

class Card : public QWidget {
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 12, theme().surface);
        Paint::outline(painter, rect(), 12, theme().hairline);
        // The head of a post: whose it is does not matter here.
        Paint::rounded(painter, QRectF(cardPadding, 20, 40, 40), 20, theme().surfaceMuted);
        Paint::rounded(painter, QRectF(cardPadding + 52, 28, 96, 8), 4, theme().surfaceMuted);
        Paint::rounded(painter, QRectF(cardPadding + 52, 44, 56, 8), 4, theme().surfaceMuted);
    }
};

} // namespace

PostGrid::PostGrid(const PhotosContext &context) : ItemView(Arrows::Move), m_context(context)
{
    setColumn(usualColumn);
    setName(said({"套图", "Set", "Série"}));
    connect(&context.thumbnails, &Thumbnails::ready, this, [this](const ThumbnailKey &key) {
        if (key.of == ThumbnailKey::Of::Photo) {
            update();
        }
    });
}

void PostGrid::setColumn(int width)
{
    m_column = width;
    setFixedWidth(columns * m_column + (columns - 1) * gap);
    reload();
}

void PostGrid::reload()
{
    setFixedHeight(sizeHint().height());
    update();
}

QSize PostGrid::tile() const
{
    return {m_column, qRound(m_column / coverRatio(m_context.model))};
}

QSize PostGrid::sizeHint() const
{
    const int rows = (count() + columns - 1) / columns;
    return {columns * m_column + (columns - 1) * gap, std::max(rows * (tile().height() + gap) - gap, 1)};
}

QRect PostGrid::itemRect(int index) const
{
    const QSize size = tile();
    return {QPoint(index % columns * (m_column + gap), index / columns * (size.height() + gap)), size};
}

QString PostGrid::itemName(int index) const
{
    return localized({"第 ", "Photo ", "Photo "}) + QString::number(index + 1) +
           localized({" 张，共 ", " of ", " sur "}) + QString::number(count()) + u", "_s +
           m_context.model.photos().at(index).name;
}

int PostGrid::photoAt(int place) const
{
    if (m_lifted < 0 || m_target < 0 || place == m_target) {
        return m_lifted >= 0 && place == m_target ? m_lifted : place;
    }
    int index = place;
    if (place > m_target) {
        --index;
    }
    if (index >= m_lifted) {
        ++index;
    }
    return index;
}

QImage PostGrid::picture(int index) const
{
    const QSize size = tile();
    const int room = qRound(std::max(size.width(), size.height()) * devicePixelRatioF());
    return thumbnail(m_context, m_context.model.photos().at(index), {room, room});
}

void PostGrid::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRectF box = itemRect(index);
    if (m_lifted >= 0 && index == m_target) {
        painter.fillRect(box, look.selection);
        QPen pen(look.accent, 1.5);
        pen.setDashPattern({4, 3});
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(box.adjusted(1, 1, -1, -1));
        return;
    }
    const int photo = photoAt(index);
    const QImage image = picture(photo);
    painter.fillRect(box, look.surfaceMuted);
    if (!image.isNull()) {
        drawCovering(painter, image, box);
    } else if (m_context.thumbnails.unreadable(m_context.model.photos().at(photo).file)) {
        Icons::draw(painter, "warn", box.center() - QPointF(10, 10), 20, look.danger);
    }
    Paint::outline(painter, box, 0, look.rim);
    if (state.focused) {
        Paint::outline(painter, box, 0, look.accent, 3);
    } else if (state.hovered && m_lifted < 0) {
        painter.fillRect(box, look.hover());
    }
}

void PostGrid::paintEvent(QPaintEvent *event)
{
    ItemView::paintEvent(event);
    if (m_lifted < 0) {
        return;
    }
    QPainter painter(this);
    const QSizeF size = tile();
    painter.translate(m_hand);
    painter.rotate(liftedDegrees);
    const QRectF box(QPointF(-size.width() / 2, -size.height() / 2), size);
    drawShadow(painter, box, 0, Elevation::Frame);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(box, theme().surfaceMuted);
    if (const QImage image = picture(m_lifted); !image.isNull()) {
        drawCovering(painter, image, box);
    }
}

void PostGrid::movePhoto(int from, int to)
{
    const QList<PhotoItem> &photos = m_context.model.photos();
    if (from != to && from >= 0 && to >= 0 && from < photos.size() && to < photos.size()) {
        m_context.model.movePhoto(photos.at(from).id, photos.at(to).id);
    }
}

void PostGrid::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_press = event->position().toPoint();
    }
    ItemView::mousePressEvent(event);
}

void PostGrid::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (m_press && event->buttons() & Qt::LeftButton) {
        if (m_lifted < 0 && (position - *m_press).manhattanLength() > Press::takesItem) {
            m_lifted = itemAt(*m_press);
        }
        if (m_lifted >= 0) {
            m_hand = position;
            const int over = itemAt(position);
            m_target = over >= 0 ? over : m_target < 0 ? m_lifted : m_target;
            Q_EMIT scrollAsked(position.y());
            update();
            return;
        }
    }
    ItemView::mouseMoveEvent(event);
}

void PostGrid::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_press.reset();
    const int from = std::exchange(m_lifted, -1);
    const int to = std::exchange(m_target, -1);
    if (from >= 0) {
        movePhoto(from, to);
        setCursorItem(to);
    }
    ItemView::mouseReleaseEvent(event);
}

void PostGrid::keyPressEvent(QKeyEvent *event)
{
    // Alt with an arrow carries the photo along.
    if (event->modifiers() & Qt::AltModifier && cursor() >= 0) {
        const int by = event->key() == Qt::Key_Left    ? -1
                       : event->key() == Qt::Key_Right ? 1
                       : event->key() == Qt::Key_Up    ? -columns
                       : event->key() == Qt::Key_Down  ? columns
                                                       : 0;
        const int to = cursor() + by;
        if (by != 0 && to >= 0 && to < count()) {
            movePhoto(cursor(), to);
            setCursorItem(to);
            return;
        }
    }
    if (event->key() == Qt::Key_Escape && m_lifted >= 0) {
        m_lifted = -1;
        m_target = -1;
        m_press.reset();
        update();
        return;
    }
    ItemView::keyPressEvent(event);
}

CoverView::CoverView(const PhotosContext &context) : m_context(context)
{
    connect(&context.thumbnails, &Thumbnails::ready, this, [this] { update(); });
}

void CoverView::paintEvent(QPaintEvent *)
{
    if (m_context.model.photos().isEmpty()) {
        return;
    }
    QPainter painter(this);
    constexpr int around = 56;
    const QSizeF room = QSizeF(size()) - QSizeF(2 * around, 2 * around);
    const QSizeF fitted = QSizeF(coverRatio(m_context.model), 1).scaled(room, Qt::KeepAspectRatio);
    const QRectF box(around, around, fitted.width(), fitted.height());
    drawShadow(painter, box, 0, Elevation::Frame);
    painter.fillRect(box, theme().surfaceMuted);
    const QSize pixels = (fitted * devicePixelRatioF()).toSize();
    const QImage image = thumbnail(m_context, m_context.model.photos().first(), pixels);
    if (!image.isNull()) {
        drawCovering(painter, image, box);
    }
    Paint::outline(painter, box, 0, theme().rim);
    const qsizetype dots = std::min<qsizetype>(m_context.model.photos().size(), manyDots);
    double x = box.center().x() - static_cast<double>(dots) * 11 / 2;
    for (qsizetype i = 0; i < dots; ++i) {
        Paint::rounded(painter, {x, box.bottom() + 24, 6, 6}, 3,
                       i == 0 ? theme().accent : theme().controlLine);
        x += 11;
    }
}

SetPreview::SetPreview(const PhotosContext &context)
    : m_context(context),
      m_title(new Label(Type::Title, said({"拖动照片排序", "Drag photos to reorder",
                                           "Glissez les photos pour les réordonner"}))),
      m_hint(new Label(Type::Body,
                       said({"第一张是帖子的封面。键盘：Alt + 方向键。",
                             "The first photo is the cover of the post. Keyboard: Alt + arrows.",
                             "La première photo est la couverture. Clavier : Alt + flèches."}),
                       Label::Tone::Secondary)),
      m_cover(new CoverView(context)),
      m_card(new Card),
      m_count(new Label(Type::Label, {})),
      m_grid(new PostGrid(context)),
      m_area(new ScrollArea)
{
    auto *bar = new PageBar(said({"套图预览", "Set preview", "Aperçu de la série"}));
    auto *go = new Button(Button::Kind::Primary, said({"导出", "Export", "Exporter"}), "export");
    go->setObjectName(u"exportSet"_s);
    bar->addAction(go);
    m_bar = bar;
    connect(bar, &PageBar::closeAsked, this, &SetPreview::closeAsked);
    connect(go, &QPushButton::clicked, this, &SetPreview::exportAsked);
    for (QWidget *part : {m_bar, static_cast<QWidget *>(m_title), static_cast<QWidget *>(m_hint),
                          static_cast<QWidget *>(m_cover), m_card}) {
        part->setParent(this);
    }
    m_count->setParent(m_card);
    m_count->setAlignment(Qt::AlignRight);
    m_count->setPhrase([this] { return countedPhotos(m_context.model.photos().size()); });
    m_area->setParent(m_card);
    m_area->setWidgetResizable(false);
    m_area->hold(m_grid);
    connect(m_grid, &PostGrid::scrollAsked, this, [this](int y) { m_area->ensureVisible(0, y, 0, 60); });
    connect(m_grid, &ItemView::cursorMoved, this, [this](int index) {
        if (index >= 0) {
            const QRect item = m_grid->itemRect(index);
            m_area->ensureVisible(item.center().x(), item.center().y(), 0, item.height() / 2 + 8);
        }
    });
    connect(&context.model, &EditorModel::changed, this, [this] {
        if (isVisible()) {
            m_grid->reload();
            m_count->refresh();
            m_cover->update();
        }
    });
}

void SetPreview::open()
{
    m_grid->reload();
    m_count->refresh();
    place();
    m_grid->setFocus();
}

void SetPreview::place()
{
    m_bar->setGeometry(0, 0, width(), 56);
    // A narrow window takes first from the cover, then from the post.
    const int between = width() < narrowWidth ? 32 : 64;
    const int free = width() - between - 48;
    const int card = std::min(cardWidth, free - leastCover);
    const int cover = std::min(coverWidth, free - card);
    m_grid->setColumn((card - 2 * cardPadding - (columns - 1) * gap) / columns);
    const int left = (width() - cover - between - card) / 2;
    const int title = std::max(m_title->heightForWidth(cover), 28);
    const int hint = std::max(m_hint->heightForWidth(cover), 40);
    m_title->setGeometry(left, 88, cover, title);
    m_hint->setGeometry(left, 92 + title, cover, hint);
    const int picture = 96 + title + hint;
    m_cover->setGeometry(left - 56, picture - 56, cover + 112, height() - picture + 56);
    m_card->setGeometry(left + cover + between, 88, card, height() - 88 + 12);
    const int count = m_count->sizeHint().height();
    m_count->setGeometry(card - cardPadding - 200, 40 - count / 2, 200, count);
    m_area->setGeometry(cardPadding, 80, card - cardPadding - 4, m_card->height() - 92);
}

void SetPreview::resizeEvent(QResizeEvent *event)
{
    place();
    QWidget::resizeEvent(event);
}

void SetPreview::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeAsked();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void SetPreview::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), theme().canvas);
}

} // namespace tarnovel::app
