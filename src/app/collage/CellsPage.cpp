#include "app/collage/CellsPage.h"

#include <algorithm>

#include <QBoxLayout>
#include <QPainter>

#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Slider.h"
#include "app/kit/Theme.h"
#include "collage/SelectedCell.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize tileSize(44, 56);
constexpr int tileTop = 5;
constexpr int captionGap = 6;
constexpr int captionHeight = 16;
constexpr int ringGap = 4;

/// A collage of this one photo, which is what a frame's tile shows.
CollageView sample(CollageStudio &studio, const QUuid &photo, CellFrame frame, QSize pixels)
{
    CollagePreset preset;
    preset.aspect = static_cast<double>(pixels.width()) / pixels.height();
    CollageDesign design = CollageDesign::of(preset, {photo});
    design.margin = 0;
    design.cells.first().frame = frame;
    CollageView view{design, CollagePlan::of(design, pixels.height())};
    const PhotoItem *item = studio.photo(photo);
    const QImage image = studio.tile(photo);
    if (item && !image.isNull()) {
        view.photoSizes[0] = item->size();
        view.images[0] = {image};
    }
    return view;
}

} // namespace

FrameTiles::FrameTiles(CollageStudio &studio) : ItemView(Arrows::Move), m_studio(studio)
{
    setName(said({"格子边框", "Cell frame", "Cadre de la case"}));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &ItemView::chosen, this, [this](int index) {
        SelectedCell(m_studio).setFrame(cellFrames.at(static_cast<size_t>(index)));
    });
}

void FrameTiles::follow()
{
    const CollageCell *cell = m_studio.selectedCell();
    const auto shown = cell ? std::optional(std::pair(cell->photo, cell->frame)) : std::nullopt;
    if (shown != m_shown) {
        m_shown = shown;
        update();
    }
}

QRect FrameTiles::itemRect(int index) const
{
    const int step = (width() - tileSize.width() - 2 * ringGap) / (count() - 1);
    return {ringGap + index * step, tileTop, tileSize.width(),
            tileSize.height() + captionGap + captionHeight};
}

QString FrameTiles::itemName(int index) const
{
    return cellFrameTitle(cellFrames.at(static_cast<size_t>(index)));
}

bool FrameTiles::itemChosen(int index) const
{
    const CollageCell *cell = m_studio.selectedCell();
    return cell && cell->frame == cellFrames.at(static_cast<size_t>(index));
}

QPixmap FrameTiles::picture(CellFrame frame)
{
    const QList<CollageCell> &cells = m_studio.design().cells;
    if (cells.isEmpty()) {
        return {};
    }
    const CollageCell *selected = m_studio.selectedCell();
    const QUuid photo = (selected ? *selected : cells.first()).photo;
    if (photo != m_photo || m_ratio != devicePixelRatioF()) {
        m_photo = photo;
        m_ratio = devicePixelRatioF();
        m_pictures.clear();
    }
    QPixmap made = m_pictures.value(static_cast<int>(frame));
    if (made.isNull()) {
        const QSize pixels = (QSizeF(tileSize) * m_ratio).toSize();
        const CollageView view = sample(m_studio, photo, frame, pixels);
        made = QPixmap(pixels);
        made.fill(theme().surfaceMuted);
        if (!view.images.empty()) {
            QPainter painter(&made);
            view.draw(painter);
            painter.end();
        }
        made.setDevicePixelRatio(m_ratio);
        if (!view.images.empty()) {
            m_pictures.insert(static_cast<int>(frame), made);
        }
    }
    return made;
}

void FrameTiles::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect box = itemRect(index);
    const QRectF tile(box.topLeft(), tileSize);
    painter.drawPixmap(tile.topLeft(), picture(cellFrames.at(static_cast<size_t>(index))));
    Paint::outline(painter, tile, 0, look.rim);
    const QRectF ring = tile.adjusted(-ringGap, -ringGap, ringGap, ringGap);
    if (state.chosen) {
        Paint::outline(painter, ring, 6, look.accent, 2);
    } else if (state.hovered) {
        Paint::outline(painter, ring, 6, look.hairline, 2);
    }
    if (state.focused) {
        Paint::outline(painter, state.chosen ? ring.adjusted(3, 3, -3, -3) : ring, 6, look.accent, 2);
    }
    painter.setFont(typeFont(state.chosen ? Type::CaptionStrong : Type::Caption));
    painter.setPen(!state.enabled ? look.disabled : state.chosen ? look.ink : look.inkSecondary);
    painter.drawText(QRectF(tile.left() - 8, tile.bottom() + captionGap, tile.width() + 16, captionHeight),
                     Qt::AlignCenter, itemName(index));
}

CellsPage::CellsPage(CollageStudio &studio) : m_studio(studio), m_copies(new QWidget)
{
    auto *column = new QVBoxLayout(this);
    column->setSpacing(0);
    column->setAlignment(Qt::AlignTop);
    addFrames();
    column->addWidget(makeRule());
    addPhoto();
    column->addWidget(makeRule());
    column->addSpacing(8);
    column->addWidget(
        makeHint("swap", said({"长按格子并拖动即可交换。", "Long-press a cell and drag to swap.",
                               "Appui long sur une case, puis glissez pour échanger."})));
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & CollageStudio::ImagesChanged) {
            m_frames->update();
        }
        if (changes & (CollageStudio::DesignChanged | CollageStudio::SelectionChanged)) {
            showState();
        }
    });
    showState();
}

void CellsPage::addFrames()
{
    auto *column = static_cast<QVBoxLayout *>(layout());
    auto *heading = new QHBoxLayout;
    auto *title = new Label(Type::Label, said({"边框", "Frame", "Cadre"}));
    QFont strong = title->font();
    strong.setWeight(QFont::DemiBold);
    title->setFont(strong);
    heading->addWidget(title);
    heading->addStretch();
    m_cell = new Label(
        Type::Label,
        [this] {
            const std::optional<int> &slot = m_studio.selected();
            return slot ? localized({"第 ", "Cell ", "Case "}) + QString::number(*slot + 1) +
                              localized({" 格", "", ""})
                        : localized({"未选格子", "No cell selected", "Aucune case"});
        },
        Label::Tone::Secondary);
    m_cell->setWordWrap(false);
    heading->addWidget(m_cell);
    column->addLayout(heading);
    column->addSpacing(4);
    m_frames = new FrameTiles(m_studio);
    m_frames->setObjectName(u"frames"_s);
    m_frames->setFixedHeight(m_frames->sizeHint().height());
    column->addWidget(m_frames);
    column->addSpacing(12);
    column->addWidget(new Label(Type::Label, said({"复制边框到", "Copy frame to", "Copier le cadre vers"}),
                                Label::Tone::Secondary));
    column->addSpacing(8);
    auto *row = new QHBoxLayout(m_copies);
    row->setContentsMargins(0, 0, 0, 0);
    // The longest of the three languages just fits.
    row->setSpacing(4);
    const auto add = [&](CopyScope scope, const char *icon, Phrase name) {
        auto *copy = new Button(Button::Kind::Secondary, std::move(name), icon);
        copy->setHeight(28);
        copy->setIconSizePx(16);
        copy->setFont(typeFont(Type::Label));
        row->addWidget(copy);
        copy->setObjectName(u"copyTo%1"_s.arg(static_cast<int>(scope)));
        connect(copy, &QPushButton::clicked, this,
                [this, scope] { SelectedCell(m_studio).copyFrame(scope); });
    };
    add(CopyScope::Row, "row", said({"本行", "Row", "Ligne"}));
    add(CopyScope::Column, "column", said({"本列", "Column", "Colonne"}));
    add(CopyScope::All, "grid", said({"全部", "All", "Toutes"}));
    row->addStretch();
    column->addWidget(m_copies);
    column->addSpacing(4);
}

void CellsPage::addPhoto()
{
    auto *column = static_cast<QVBoxLayout *>(layout());
    m_zoom = new Slider(said({"缩放", "Zoom", "Zoom"}), {.low = 1,
                                                         .high = CollageEdits::largestZoom,
                                                         .step = 0.1,
                                                         .decimals = 1,
                                                         .unit = u" ×"_s,
                                                         .usual = 1});
    column->addWidget(m_zoom);
    column->addSpacing(12);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_center = new Button(Button::Kind::Secondary, said({"照片居中", "Center photo", "Centrer la photo"}),
                          "placement");
    m_reset = new Button(Button::Kind::Ghost, said({"重置", "Reset", "Rétablir"}), "reset");
    for (Button *button : {m_center, m_reset}) {
        button->setHeight(28);
        button->setIconSizePx(16);
        button->setFont(typeFont(Type::Label));
        row->addWidget(button);
    }
    row->addStretch();
    column->addLayout(row);
    column->addSpacing(4);
    m_zoom->setObjectName(u"zoom"_s);
    m_center->setObjectName(u"centerPhoto"_s);
    m_reset->setObjectName(u"resetPhoto"_s);
    connect(m_zoom, &Slider::changed, this, [this](double zoom) { SelectedCell(m_studio).setZoom(zoom); });
    connect(m_center, &QPushButton::clicked, this, [this] { SelectedCell(m_studio).centerPhoto(); });
    connect(m_reset, &QPushButton::clicked, this, [this] { SelectedCell(m_studio).resetPhoto(); });
}

void CellsPage::showState()
{
    const CollageCell *cell = m_studio.selectedCell();
    m_cell->refresh();
    m_frames->follow();
    m_zoom->setEnabled(cell);
    m_copies->setEnabled(cell);
    const bool moved = cell && !cell->offset.isNull();
    m_center->setEnabled(moved);
    m_reset->setEnabled(moved || (cell && cell->zoom != 1));
    m_zoom->setValue(cell ? cell->zoom : 1);
}

} // namespace tarnovel::app
