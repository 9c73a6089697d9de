#include "app/screens/ManagePhotos.h"

#include <algorithm>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "app/Wording.h"
#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Theme.h"
#include "app/screens/PageBar.h"
#include "language/Plural.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize tile(188, 208);
constexpr QSize step(212, 260);
constexpr int margin = 96;
constexpr int tightMargin = 32;
constexpr int topMargin = 32;
constexpr int footerHeight = 72;
constexpr int box = 20;
constexpr int padding = 12;

Phrase countedPhrase(qsizetype count, const Text &one, const Text &other)
{
    return [=] { return counted(count, one, other); };
}

} // namespace

ManageGrid::ManageGrid(const PhotosContext &context) : ItemView(Arrows::Move), m_context(context)
{
    setName(said({"照片", "Photos", "Photos"}));
    connect(this, &ItemView::chosen, this, [this](int index) {
        const QUuid id = m_context.model.photos().at(index).id;
        if (m_picked.erase(id) == 0) {
            m_picked.insert(id);
        }
        update();
        Q_EMIT pickedChanged();
    });
    connect(&context.thumbnails, &Thumbnails::ready, this, [this](const ThumbnailKey &key) {
        if (key.of == ThumbnailKey::Of::Photo) {
            update();
        }
    });
}

void ManageGrid::setPicked(const std::set<QUuid> &picked)
{
    m_picked = picked;
    update();
    Q_EMIT pickedChanged();
}

void ManageGrid::reload()
{
    std::erase_if(m_picked, [this](const QUuid &id) { return !m_context.model.photo(id); });
    setFixedHeight(heightForWidth(width()));
    update();
}

int ManageGrid::columns(int width) const
{
    return std::max((width - 2 * tightMargin + step.width() - tile.width()) / step.width(), 1);
}

QRect ManageGrid::itemRect(int index) const
{
    const int across = std::min(columns(width()), 6);
    const int used = across * step.width() - (step.width() - tile.width());
    const int left = (width() - used) / 2;
    return {left + index % across * step.width(), topMargin + index / across * step.height(), tile.width(),
            tile.height() + 32};
}

int ManageGrid::heightForWidth(int width) const
{
    const int across = std::min(columns(width), 6);
    return topMargin + (count() + across - 1) / across * step.height();
}

QSize ManageGrid::sizeHint() const
{
    return {1100, heightForWidth(std::max(width(), 1100))};
}

void ManageGrid::resizeEvent(QResizeEvent *event)
{
    setFixedHeight(heightForWidth(width()));
    ItemView::resizeEvent(event);
}

bool ManageGrid::itemChosen(int index) const
{
    return m_picked.contains(m_context.model.photos().at(index).id);
}

QString ManageGrid::itemName(int index) const
{
    return localized({"第 ", "Photo ", "Photo "}) + QString::number(index + 1) + u", "_s +
           m_context.model.photos().at(index).name;
}

void ManageGrid::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRectF card(itemRect(index).topLeft(), tile);
    Paint::rounded(painter, card, 8, look.surfaceMuted);
    if (state.hovered) {
        Paint::rounded(painter, card, 8, state.pressed ? look.pressed() : look.hover());
    }
    const PhotoItem &photo = m_context.model.photos().at(index);
    const QSize room = ((QSizeF(tile) - QSizeF(2 * padding, 2 * padding)) * devicePixelRatioF()).toSize();
    const QImage image = m_context.thumbnails.image(ThumbnailKey::photo(photo), photo, room);
    if (!image.isNull()) {
        paintFramed(painter, image, card, true);
    } else if (m_context.thumbnails.unreadable(photo.file)) {
        Icons::draw(painter, "warn", card.center() - QPointF(10, 10), 20, look.danger);
    }
    if (state.chosen || state.focused) {
        Paint::outline(painter, card.adjusted(-4, -4, 4, 4), 11, look.accent, state.chosen ? 2 : 1.5);
    }
    if (state.chosen && state.focused) {
        Paint::outline(painter, card.adjusted(1, 1, -1, -1), 7, look.accent, 1.5);
    }
    const QRectF check(card.left(), card.bottom() + 12, box, box);
    if (state.chosen) {
        Paint::rounded(painter, check, 5, look.accent);
        Icons::draw(painter, "check", check.topLeft() + QPointF(2, 2), 16, look.onAccent);
    } else {
        Paint::outline(painter, check, 5, look.controlLine, 1.5);
    }
    painter.setFont(typeFont(Type::Label));
    painter.setPen(look.ink);
    const QRectF name(check.right() + 8, check.top(), card.width() - box - 40, box);
    painter.drawText(name, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(photo.name, Qt::ElideMiddle, qRound(name.width())));
    painter.setPen(look.inkSecondary);
    painter.drawText(QRectF(card.left(), check.top(), card.width(), box), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(index + 1));
}

ManagePhotos::ManagePhotos(const PhotosContext &context)
    : m_context(context),
      m_grid(new ManageGrid(context)),
      m_area(new ScrollArea),
      m_selectAll(new Button(Button::Kind::Ghost, said({"全选", "Select all", "Tout sélectionner"}))),
      m_clear(new Button(Button::Kind::DangerGhost, said({"清空", "Clear all", "Tout effacer"}), "trash"))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto *bar = new PageBar(said({"管理照片", "Manage photos", "Gérer les photos"}));
    bar->addAction(m_selectAll);
    bar->addAction(m_clear);
    m_selectAll->setObjectName(u"selectAll"_s);
    m_clear->setObjectName(u"clearAll"_s);
    column->addWidget(bar);
    m_area->hold(m_grid);
    column->addWidget(m_area, 1);
    column->addWidget(makeFooter());
    connect(bar, &PageBar::closeAsked, this, &ManagePhotos::closeAsked);
    connect(m_selectAll, &QPushButton::clicked, this, [this] {
        std::set<QUuid> all;
        for (const PhotoItem &photo : m_context.model.photos()) {
            all.insert(photo.id);
        }
        m_grid->setPicked(all);
    });
    connect(m_clear, &QPushButton::clicked, this, &ManagePhotos::askClear);
    connect(m_grid, &ManageGrid::pickedChanged, this, &ManagePhotos::refresh);
    connect(m_grid, &ItemView::cursorMoved, this, [this](int index) {
        if (index >= 0) {
            const QRect item = m_grid->itemRect(index);
            m_area->ensureVisible(item.center().x(), item.center().y(), 0, item.height() / 2 + 16);
        }
    });
    connect(m_grid, &ItemView::menuRequested, this, [this](int index) {
        if (m_grid->picked().empty()) {
            m_grid->setPicked({m_context.model.photos().at(index).id});
        }
        askRemove();
    });
    connect(&context.model, &EditorModel::changed, this, [this](EditorModel::Changes changes) {
        if (isVisible() && changes & EditorModel::PhotosChanged) {
            m_grid->reload();
            refresh();
        }
    });
}

QWidget *ManagePhotos::makeFooter()
{
    auto *footer = new QWidget;
    footer->setFixedHeight(footerHeight);
    auto *row = new QHBoxLayout(footer);
    row->setContentsMargins(margin, 0, margin, 0);
    row->setSpacing(12);
    m_selected = new Label(Type::BodyStrong, {});
    m_total = new Label(Type::Body, {}, Label::Tone::Secondary);
    for (Label *label : {m_selected, m_total}) {
        label->setWordWrap(false);
        row->addWidget(label);
    }
    row->addStretch();
    m_deselect = new Button(Button::Kind::Ghost, said({"取消选择", "Deselect", "Désélectionner"}));
    m_remove = new Button(Button::Kind::DangerGhost, {}, "trash");
    m_deselect->setObjectName(u"deselect"_s);
    m_remove->setObjectName(u"removePicked"_s);
    row->addWidget(m_deselect);
    row->addWidget(m_remove);
    connect(m_deselect, &QPushButton::clicked, this, [this] { m_grid->setPicked({}); });
    connect(m_remove, &QPushButton::clicked, this, &ManagePhotos::askRemove);
    return footer;
}

void ManagePhotos::open()
{
    m_grid->setPicked({});
    m_grid->reload();
    refresh();
    m_grid->setFocus();
}

void ManagePhotos::refresh()
{
    const auto picked = static_cast<qsizetype>(m_grid->picked().size());
    const qsizetype total = m_context.model.photos().size();
    m_selected->setPhrase(countedPhrase(picked, {"已选 %1 张", "%1 selected", "%1 sélectionnée"},
                                        {"已选 %1 张", "%1 selected", "%1 sélectionnées"}));
    m_total->setPhrase([total] {
        return localized({"共 ", "", ""}) + QString::number(total) +
               localized({" / 50 张", " of 50 photos", " photos sur 50"});
    });
    m_remove->setPhrase(countedPhrase(picked, {"移除 %1 张照片", "Remove %1 photo", "Retirer %1 photo"},
                                      {"移除 %1 张照片", "Remove %1 photos", "Retirer %1 photos"}));
    m_remove->setEnabled(picked > 0);
    m_deselect->setEnabled(picked > 0);
    m_clear->setEnabled(total > 0);
    m_selectAll->setEnabled(picked < total);
}

void ManagePhotos::askRemove()
{
    const auto picked = static_cast<qsizetype>(m_grid->picked().size());
    if (picked == 0) {
        return;
    }
    ask(m_remove,
        {countedPhrase(picked, {"移除 %1 张照片？", "Remove %1 photo?", "Retirer %1 photo ?"},
                       {"移除 %1 张照片？", "Remove %1 photos?", "Retirer %1 photos ?"}),
         countedPhrase(picked,
                       {"从本次编辑中移除？原照片仍在原文件夹中。",
                        "Remove from this editing session? The original stays in its folder.",
                        "Retirer de cette session ? L’original reste dans son dossier."},
                       {"从本次编辑中移除？原照片仍在原文件夹中。",
                        "Remove from this editing session? The originals stay in their folders.",
                        "Retirer de cette session ? Les originaux restent dans leurs dossiers."}),
         said({"移除", "Remove", "Retirer"})},
        [this] {
            m_context.model.removePhotos(m_grid->picked());
            if (m_context.model.photos().isEmpty()) {
                Q_EMIT closeAsked();
            }
        });
}

void ManagePhotos::askClear()
{
    ask(m_clear,
        {said({"清空", "Clear all", "Tout effacer"}),
         [] { return Wording::local(Confirmations::clearAll()); },
         said({"清空", "Clear all", "Tout effacer"})},
        [this] {
            m_context.model.removeAll();
            Q_EMIT closeAsked();
        });
}

void ManagePhotos::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeAsked();
    } else if (event->matches(QKeySequence::SelectAll)) {
        m_selectAll->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void ManagePhotos::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    const QRect footer(0, height() - footerHeight, width(), footerHeight);
    painter.fillRect(footer, theme().surface);
    Paint::hairline(painter, footer.topLeft(), QPointF(width(), footer.top()));
}

} // namespace tarnovel::app
