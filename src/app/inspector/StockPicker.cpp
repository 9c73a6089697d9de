#include "app/inspector/StockPicker.h"

#include <algorithm>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "app/kit/Field.h"
#include "app/kit/Icons.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Theme.h"
#include "film/FilmStockCatalog.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int rowHeight = 32;
constexpr int brandHeight = 30;
constexpr int padding = 4;
constexpr int listHeight = 204;

bool matches(const FilmStock &stock, const QStringList &words)
{
    return std::all_of(words.begin(), words.end(), [&stock](const QString &word) {
        return stock.name.contains(word, Qt::CaseInsensitive) ||
               stock.brand.contains(word, Qt::CaseInsensitive) ||
               stock.marking.contains(word, Qt::CaseInsensitive);
    });
}

class Frame : public QWidget {
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::outline(painter, QRectF(rect()).adjusted(0, -10, 0, 0), 8, theme().hairline);
        Paint::hairline(painter, QPointF(0, 0), QPointF(width(), 0));
    }
};

} // namespace

StockList::StockList() : ItemView(Arrows::Move)
{
    filter({});
}

void StockList::filter(const QString &text)
{
    const QString wanted = text.simplified();
    const QStringList words = wanted.split(u' ', Qt::SkipEmptyParts);
    m_rows.clear();
    m_brands.clear();
    int y = padding;
    bool exact = wanted.isEmpty();
    for (const QString &brand : FilmStockCatalog::brands()) {
        bool first = true;
        for (const FilmStock &stock : FilmStockCatalog::available()) {
            if (stock.brand != brand || !matches(stock, words)) {
                continue;
            }
            if (first) {
                m_brands.push_back({brand, y});
                y += brandHeight;
                first = false;
            }
            m_rows.push_back({stock.name, y, false});
            y += rowHeight;
            exact = exact || stock.name.compare(wanted, Qt::CaseInsensitive) == 0;
        }
    }
    if (!exact) {
        m_rows.push_back({wanted, y, true});
        y += rowHeight;
    } else if (!m_stock.isEmpty() && wanted.isEmpty() && !FilmStockCatalog::item(m_stock)) {
        m_rows.insert(m_rows.begin(), {m_stock, padding, false});
        for (size_t i = 1; i < m_rows.size(); ++i) {
            m_rows[i].y += rowHeight;
        }
        for (Brand &known : m_brands) {
            known.y += rowHeight;
        }
        y += rowHeight;
    }
    m_height = y + padding;
    setCursorItem(m_rows.empty() ? -1 : 0);
    setMinimumHeight(m_height);
    setMaximumHeight(m_height);
    updateGeometry();
    update();
}

void StockList::setStock(const QString &stock)
{
    if (m_stock != stock) {
        m_stock = stock;
        update();
    }
}

QString StockList::stockAt(int index) const
{
    return m_rows.at(static_cast<size_t>(index)).stock;
}

int StockList::indexOf(const QString &stock) const
{
    const auto row = std::ranges::find(m_rows, stock, &Row::stock);
    return row == m_rows.end() ? -1 : static_cast<int>(row - m_rows.begin());
}

QRect StockList::itemRect(int index) const
{
    return {padding, m_rows.at(static_cast<size_t>(index)).y, width() - 2 * padding, rowHeight};
}

QString StockList::itemName(int index) const
{
    const Row &row = m_rows.at(static_cast<size_t>(index));
    return row.own ? localized({"使用“", "Use “", "Utiliser « "}) + row.stock + localized({"”", "”", " »"})
                   : row.stock;
}

QSize StockList::sizeHint() const
{
    return {200, m_height};
}

void StockList::paintGround(QPainter &painter)
{
    painter.setFont(typeFont(Type::CaptionStrong));
    painter.setPen(theme().inkSecondary);
    for (const Brand &brand : m_brands) {
        painter.drawText(QRect(16, brand.y, width() - 20, brandHeight), Qt::AlignLeft | Qt::AlignVCenter,
                         brand.name.toUpper());
    }
}

void StockList::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRectF box = itemRect(index);
    if (state.hovered) {
        Paint::rounded(painter, box, 6, state.pressed ? look.pressed() : look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, box, 6, look.accent, 2);
    }
    if (state.chosen) {
        Icons::draw(painter, "check", {box.left() + 10, box.top() + 8}, 16, look.accent);
    }
    painter.setFont(typeFont(state.chosen ? Type::BodyStrong : Type::Body));
    painter.setPen(state.chosen ? look.accent : look.ink);
    const QRectF room = box.adjusted(36, 0, -4, 0);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(itemName(index), Qt::ElideRight, qRound(room.width())));
}

StockPicker::StockPicker()
    : m_search(new Field(said({"搜索胶卷", "Search film stocks", "Rechercher une pellicule"}))),
      m_list(new StockList),
      m_scroll(new ScrollArea)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_search->setIconName("search");
    m_search->setPlaceholder([] {
        return localized({"搜索 ", "Search ", "Rechercher parmi "}) +
               QString::number(FilmStockCatalog::available().size()) +
               localized({" 种胶卷", " stocks", " pellicules"});
    });
    column->addWidget(m_search);
    auto *frame = new Frame;
    auto *inside = new QVBoxLayout(frame);
    inside->setContentsMargins(1, 0, 1, 1);
    m_list->setName(said({"胶卷", "Film stock", "Pellicule"}));
    m_scroll->hold(m_list);
    m_scroll->setFixedHeight(listHeight);
    inside->addWidget(m_scroll);
    frame->setFixedHeight(listHeight + 1);
    column->addWidget(frame);
    connect(m_search, &QLineEdit::textEdited, this, &StockPicker::filter);
    connect(m_search, &QLineEdit::returnPressed, this,
            [this] { m_list->choose(std::max(m_list->cursor(), 0)); });
    connect(m_list, &ItemView::cursorMoved, this, [this](int index) {
        if (index >= 0) {
            const QRect row = m_list->itemRect(index);
            m_scroll->ensureVisible(row.center().x(), row.center().y(), 0, rowHeight);
        }
    });
    connect(m_list, &ItemView::chosen, this, [this](int index) {
        const QString stock = m_list->stockAt(index);
        m_search->clear();
        Q_EMIT chosen(stock);
        filter({});
    });
}

void StockPicker::filter(const QString &text)
{
    m_list->filter(text);
}

void StockPicker::setStock(const QString &stock)
{
    if (m_list->indexOf(stock) >= 0 && m_list->itemChosen(m_list->indexOf(stock))) {
        return;
    }
    m_list->setStock(stock);
    if (m_search->text().isEmpty()) {
        m_list->filter({});
        if (const int index = m_list->indexOf(stock); index >= 0) {
            m_list->setCursorItem(index);
        }
    }
}

} // namespace tarnovel::app
