#include "app/collage/PhotoColumn.h"

#include <QBoxLayout>
#include <QDrag>
#include <QHelpEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include "app/collage/CollageBoard.h"
#include "app/collage/CollageChooser.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Press.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int columnWidth = 104;
constexpr int tileSide = 72;
constexpr int tileStep = 84;
constexpr int ringRoom = 12;
constexpr int badge = 24;

} // namespace

ColumnPhotos::ColumnPhotos(CollageStudio &studio) : PhotoItems(studio, tileSide)
{
    setName(said({"照片", "Photos", "Photos"}));
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & (CollageStudio::PhotosChanged | CollageStudio::PhaseChanged)) {
            learn();
        }
    });
    connect(this, &ItemView::chosen, this, &ColumnPhotos::take);
    learn();
}

void ColumnPhotos::learn()
{
    const QUuid held = cursor() >= 0 && cursor() < count() ? m_photos.at(cursor()) : QUuid();
    m_photos = studio().picked();
    for (const PhotoItem &photo : studio().candidates()) {
        if (!m_photos.contains(photo.id)) {
            m_photos.append(photo.id);
        }
    }
    setFixedHeight(2 * ringRoom + std::max(count() * tileStep - (tileStep - tileSide), 0));
    // The keyboard stays on its photo, wherever that has gone.
    if (!held.isNull()) {
        setCursorItem(static_cast<int>(m_photos.indexOf(held)));
    }
    update();
}

void ColumnPhotos::take(int index)
{
    studio().toggle(m_photos.at(index));
}

QRect ColumnPhotos::itemRect(int index) const
{
    return {(columnWidth - tileSide) / 2, ringRoom + index * tileStep, tileSide, tileSide};
}

QString ColumnPhotos::itemName(int index) const
{
    const qsizetype order = studio().order(m_photos.at(index));
    const QString name = nameOf(m_photos.at(index));
    return order > 0 ? name + localized({"，第 ", ", cell ", ", case "}) + QString::number(order) +
                           localized({" 格", "", ""})
                     : name;
}

void ColumnPhotos::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect box = itemRect(index);
    const QRectF outer = box;
    paintPhoto(painter, box, m_photos.at(index), 4);
    if (state.chosen) {
        Paint::outline(painter, outer.adjusted(-4, -4, 4, 4), 8, look.accent, 2);
        const QRectF circle(outer.right() - badge + 6, outer.top() - 8, badge, badge);
        Paint::rounded(painter, circle.adjusted(-2, -2, 2, 2), badge, look.canvas);
        paintNumber(painter, circle, studio().order(m_photos.at(index)));
    } else if (state.hovered) {
        Paint::outline(painter, outer.adjusted(-3, -3, 3, 3), 7, look.controlLine, 2);
    }
    if (state.focused) {
        Paint::focusRing(painter, state.chosen ? outer.adjusted(-2, -2, 2, 2) : outer, 5, look.canvas);
    }
}

void ColumnPhotos::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->position();
    m_grabbed = event->button() == Qt::LeftButton ? itemAt(event->position().toPoint()) : -1;
    PhotoItems::mousePressEvent(event);
}

void ColumnPhotos::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF way = event->position() - m_pressed;
    if (m_grabbed >= 0 && event->buttons() & Qt::LeftButton && way.manhattanLength() > Press::takesItem &&
        studio().editable()) {
        const int index = std::exchange(m_grabbed, -1);
        // What is dragged away has not been tapped.
        QMouseEvent outside(QEvent::MouseButtonRelease, QPointF(-1, -1), QPointF(-1, -1), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        PhotoItems::mouseReleaseEvent(&outside);
        startDrag(index);
        return;
    }
    PhotoItems::mouseMoveEvent(event);
}

void ColumnPhotos::startDrag(int index)
{
    const QUuid photo = m_photos.at(index);
    auto *carried = new QMimeData;
    carried->setData(QLatin1StringView(collagePhotoMime), photo.toString().toLatin1());
    auto *drag = new QDrag(this);
    drag->setMimeData(carried);
    const QPixmap picture = pixmap(photo);
    if (!picture.isNull()) {
        drag->setPixmap(picture);
        drag->setHotSpot(m_pressed.toPoint() - itemRect(index).topLeft());
    }
    drag->exec(Qt::CopyAction);
}

bool ColumnPhotos::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const int index = itemAt(help->pos());
        if (index >= 0) {
            QToolTip::showText(help->globalPos(), nameOf(m_photos.at(index)), this);
        }
        return true;
    }
    return PhotoItems::event(event);
}

PhotoColumn::PhotoColumn(CollageStudio &studio)
    : m_studio(studio),
      m_count(new Label(
          Type::Caption, [&studio] { return pickedCount(studio); }, Label::Tone::Secondary)),
      m_add(new Button(Button::Kind::Secondary, said({"添加文件…", "Add files…", "Ajouter des fichiers…"}),
                       "plus", Button::Face::IconOnly))
{
    setFixedWidth(columnWidth);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 12, 0, 12);
    column->setSpacing(4);
    m_count->setAlignment(Qt::AlignCenter);
    column->addWidget(m_count);
    auto *photos = new ColumnPhotos(studio);
    auto *scroll = new ScrollArea;
    scroll->setWidget(photos);
    photos->setAutoFillBackground(false);
    column->addWidget(scroll, 1);
    connect(photos, &ItemView::cursorMoved, this, [photos, scroll](int index) {
        if (index >= 0 && photos->hasFocus()) {
            const QPoint middle = photos->itemRect(index).center();
            scroll->ensureVisible(middle.x(), middle.y(), 0, tileStep / 2 + ringRoom);
        }
    });
    m_add->setFixedWidth(tileSide);
    column->addWidget(m_add, 0, Qt::AlignHCenter);
    connect(m_add, &QPushButton::clicked, this, &PhotoColumn::filesAsked);
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & (CollageStudio::PhotosChanged | CollageStudio::PhaseChanged)) {
            showState();
        }
    });
}

void PhotoColumn::showState()
{
    m_count->refresh();
    m_add->setBusy(m_studio.importing());
    m_add->setEnabled(m_studio.editable());
}

void PhotoColumn::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        showState();
    }
    QWidget::changeEvent(event);
}

void PhotoColumn::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(width() - 1, 0), QPointF(width() - 1, height()));
}

} // namespace tarnovel::app
