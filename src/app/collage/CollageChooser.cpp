#include "app/collage/CollageChooser.h"

#include <algorithm>

#include <QBoxLayout>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int tileRadius = 8;
constexpr int badge = 28;
constexpr int badgeInset = 8;
/// Above the first row, for its rings.
constexpr int ringRoom = 6;
constexpr int slotSide = 56;
constexpr int slotStep = 68;
constexpr int slotGap = 8;
constexpr int leastSlot = 40;
constexpr int narrowWindow = 1280;
constexpr int narrowInset = 44;
constexpr int headerHeight = 96;

} // namespace

ChooserGrid::ChooserGrid(CollageStudio &studio) : PhotoItems(studio, tile)
{
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & CollageStudio::PhotosChanged) {
            layOut();
        }
    });
    connect(this, &ItemView::chosen, this,
            [this](int index) { this->studio().toggle(this->studio().candidates().at(index).id); });
    layOut();
}

void ChooserGrid::setColumns(int left, int columns)
{
    m_left = left;
    m_columns = columns;
    layOut();
}

void ChooserGrid::layOut()
{
    const int rows = (count() + m_columns - 1) / m_columns;
    setFixedHeight(2 * ringRoom + std::max(rows * (tile + gap) - gap, 0) + gap);
    update();
}

QRect ChooserGrid::itemRect(int index) const
{
    return {m_left + index % m_columns * (tile + gap), ringRoom + index / m_columns * (tile + gap), tile,
            tile};
}

QString ChooserGrid::itemName(int index) const
{
    const PhotoItem photo = studio().candidates().at(index);
    const qsizetype order = studio().order(photo.id);
    const QString name = localized({"第 ", "Photo ", "Photo "}) + QString::number(index + 1) +
                         localized({" 张，共 ", " of ", " sur "}) + QString::number(count()) +
                         localized({" 张，", ", ", ", "}) + photo.name;
    return order == 0 ? name
                      : name + localized({"，拼图第 ", ", place ", ", place "}) + QString::number(order) +
                            localized({" 格", " in the collage", " dans le collage"});
}

bool ChooserGrid::itemChosen(int index) const
{
    return studio().order(studio().candidates().at(index).id) > 0;
}

void ChooserGrid::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect box = itemRect(index);
    const QUuid photo = studio().candidates().at(index).id;
    paintPhoto(painter, box, photo, tileRadius);
    const QRectF outer = box;
    if (state.hovered && !state.chosen) {
        Paint::outline(painter, outer.adjusted(-2, -2, 2, 2), tileRadius + 2, look.controlLine, 2);
    }
    if (state.chosen) {
        Paint::outline(painter, outer.adjusted(-4, -4, 4, 4), tileRadius + 4, look.accent, 2);
    }
    const QRectF circle(box.right() + 1 - badgeInset - badge, box.top() + badgeInset, badge, badge);
    if (const qsizetype order = studio().order(photo); order > 0) {
        paintNumber(painter, circle, order);
    } else if (!studio().tileFailed(photo)) {
        Paint::rounded(painter, circle, badge / 2.0, QColor(0, 0, 0, 36));
        Paint::outline(painter, circle, badge / 2.0, Qt::white, 2);
    }
    if (state.focused) {
        Paint::focusRing(painter, state.chosen ? outer.adjusted(-2, -2, 2, 2) : outer, tileRadius,
                         look.canvas);
    }
}

ChooserTray::ChooserTray(CollageStudio &studio) : PhotoItems(studio, slotSide)
{
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &ItemView::chosen, this,
            [this](int index) { this->studio().toggle(this->studio().picked().at(index)); });
}

QRect ChooserTray::itemRect(int index) const
{
    // In a narrow window the slots move together and shrink.
    const int step = std::min((width() - 8 + slotGap) / count(), slotStep);
    const int side = std::min(slotSide, step - slotGap);
    return {4 + index * step, 4 + (slotSide - side) / 2, side, side};
}

QSize ChooserTray::sizeHint() const
{
    return {8 + (count() - 1) * slotStep + slotSide, 8 + slotSide};
}

QSize ChooserTray::minimumSizeHint() const
{
    return {8 + count() * (leastSlot + slotGap) - slotGap, 8 + slotSide};
}

QString ChooserTray::itemName(int index) const
{
    const QString place =
        localized({"第 ", "Place ", "Place "}) + QString::number(index + 1) + localized({" 格", "", ""});
    return place + localized({"，", ", ", ", "}) +
           (itemEnabled(index)
                ? nameOf(studio().picked().at(index)) + localized({"，移除", ", remove", ", retirer"})
                : localized({"空", "empty", "vide"}));
}

void ChooserTray::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect box = itemRect(index);
    if (!state.enabled) {
        QPen dashes(look.hairline, 1, Qt::CustomDashLine);
        dashes.setDashPattern({3, 3});
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(dashes);
        painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        painter.setFont(typeFont(Type::Label));
        painter.setPen(look.disabled);
        painter.drawText(box, Qt::AlignCenter, QString::number(index + 1));
    } else {
        paintPhoto(painter, box, studio().picked().at(index), 4);
        if (state.hovered) {
            Paint::outline(painter, QRectF(box).adjusted(-3, -3, 3, 3), 7, look.hairline, 2);
        }
    }
    if (state.focused) {
        Paint::outline(painter, QRectF(box).adjusted(-4, -4, 4, 4), 8, look.accent, 2);
    }
}

QString pickedCount(const CollageStudio &studio)
{
    return localized({"已选 ", "", ""}) + QString::number(studio.total()) +
           localized({" / ", " of ", " sur "}) + QString::number(CollageEdits::mostPhotos);
}

CollageChooser::CollageChooser(CollageStudio &studio)
    : m_studio(studio), m_grid(new ChooserGrid(studio)), m_scroll(new ScrollArea)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    m_grid->setName(said({"照片", "Photos", "Photos"}));
    m_scroll->setWidget(m_grid);
    // The page shows through.
    m_grid->setAutoFillBackground(false);
    setFocusProxy(m_grid);
    m_empty = makeEmpty();
    column->addWidget(m_empty, 1);
    column->addWidget(m_scroll, 1);
    column->addWidget(makeTray());
    connect(m_grid, &ItemView::cursorMoved, this, [this](int index) {
        if (index >= 0) {
            const QPoint middle = m_grid->itemRect(index).center();
            constexpr int half = ChooserGrid::tile / 2 + ringRoom;
            m_scroll->ensureVisible(middle.x(), middle.y(), 0, half);
        }
    });
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & (CollageStudio::PhotosChanged | CollageStudio::PhaseChanged)) {
            showState();
        }
    });
    showState();
}

QWidget *CollageChooser::makeHeader()
{
    auto *header = new QWidget;
    header->setFixedHeight(headerHeight);
    m_headerRow = new QHBoxLayout(header);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch();
    texts->addWidget(new Label(
        Type::Title, said({"按顺序点选照片", "Tap photos in order", "Touchez les photos dans l’ordre"})));
    texts->addWidget(new Label(
        Type::Body,
        said({"两到九张照片，先后顺序决定版式。", "Two to nine photos. The order becomes the layout.",
              "De deux à neuf photos. L’ordre détermine la mise en page."}),
        Label::Tone::Secondary));
    texts->addStretch();
    m_headerRow->addLayout(texts, 1);
    m_files = new Button(Button::Kind::Secondary, said({"从文件选择…", "Files…", "Fichiers…"}), "folder");
    m_files->setObjectName(u"addFiles"_s);
    m_headerRow->addWidget(m_files);
    connect(m_files, &QPushButton::clicked, this, &CollageChooser::filesAsked);
    return header;
}

QWidget *CollageChooser::makeEmpty()
{
    auto *empty = new QWidget;
    auto *column = new QVBoxLayout(empty);
    column->setSpacing(4);
    column->addStretch();
    auto *title = new Label(Type::Heading, said({"还没有照片", "No photos yet", "Pas encore de photos"}));
    auto *text = new Label(
        Type::Body,
        said({"从文件选择照片，或把照片拖到这里。", "Choose photos from your files, or drop them here.",
              "Choisissez des photos dans vos fichiers ou déposez-les ici."}),
        Label::Tone::Secondary);
    for (Label *label : {title, text}) {
        label->setAlignment(Qt::AlignCenter);
        column->addWidget(label);
    }
    column->addStretch();
    return empty;
}

QWidget *CollageChooser::makeTray()
{
    auto *tray = new QWidget;
    tray->setFixedHeight(trayHeight);
    m_trayRow = new QHBoxLayout(tray);
    m_trayRow->setSpacing(8);
    m_count = new Label(Type::BodyMedium, [this] { return pickedCount(m_studio); });
    m_count->setWordWrap(false);
    m_count->setFixedWidth(72);
    m_trayRow->addWidget(m_count);
    m_trayRow->addStretch(1);
    auto *places = new ChooserTray(m_studio);
    places->setName(said({"已选照片", "Chosen photos", "Photos choisies"}));
    m_trayRow->addWidget(places);
    m_trayRow->addStretch(3);
    m_clear = new Button(Button::Kind::Ghost, said({"清除", "Clear", "Effacer"}));
    m_clear->setObjectName(u"clearPicked"_s);
    m_make = new Button(Button::Kind::Primary, said({"制作拼图", "Make collage", "Créer le collage"}));
    m_make->setObjectName(u"makeCollage"_s);
    m_make->setHeight(40);
    m_trayRow->addWidget(m_clear);
    m_trayRow->addWidget(m_make);
    connect(m_clear, &QPushButton::clicked, this, [this] { m_studio.clearPicked(); });
    connect(m_make, &QPushButton::clicked, this, [this] { m_studio.start(); });
    return tray;
}

void CollageChooser::showState()
{
    const bool any = !m_studio.candidates().isEmpty();
    m_scroll->setVisible(any);
    m_empty->setVisible(!any);
    m_count->refresh();
    m_clear->setEnabled(m_studio.total() > 0);
    m_make->setEnabled(m_studio.canStart());
    m_files->setBusy(m_studio.importing());
}

void CollageChooser::resizeEvent(QResizeEvent *event)
{
    const int inset = width() < narrowWindow ? narrowInset : width() / 10;
    const int step = ChooserGrid::tile + ChooserGrid::gap;
    const int columns = std::max((width() - 2 * inset + ChooserGrid::gap) / step, 1);
    const int left = (width() - columns * step + ChooserGrid::gap) / 2;
    m_grid->setColumns(left, columns);
    m_headerRow->setContentsMargins(left, 0, left, 0);
    const int trayInset = width() < narrowWindow ? narrowInset : left;
    m_trayRow->setContentsMargins(trayInset, 0, trayInset, 0);
    QWidget::resizeEvent(event);
}

void CollageChooser::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    const int top = height() - trayHeight;
    painter.fillRect(0, top, width(), trayHeight, theme().surface);
    Paint::hairline(painter, QPointF(0, top), QPointF(width(), top));
}

} // namespace tarnovel::app
