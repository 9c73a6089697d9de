#pragma once

#include <vector>

#include <QWidget>

#include "app/kit/ItemView.h"

namespace tarnovel::app {

class Field;
class ScrollArea;

/// The film stocks by brand. A name that is in no brand can be used too.
class StockList : public ItemView {
    Q_OBJECT

public:
    StockList();

    /// Shows what contains the words of `text`; none shows all.
    void filter(const QString &text);
    void setStock(const QString &stock);
    QString stockAt(int index) const;
    int indexOf(const QString &stock) const;

    int count() const override { return static_cast<int>(m_rows.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemChosen(int index) const override { return stockAt(index) == m_stock; }
    QSize sizeHint() const override;

protected:
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    struct Row {
        QString stock;
        int y = 0;
        /// A name of the user's own.
        bool own = false;
    };
    struct Brand {
        QString name;
        int y = 0;
    };
    std::vector<Row> m_rows;
    std::vector<Brand> m_brands;
    int m_height = 0;
    QString m_stock;
};

/// The list with its search field.
class StockPicker : public QWidget {
    Q_OBJECT

public:
    StockPicker();

    /// Nobody is told.
    void setStock(const QString &stock);

Q_SIGNALS:
    void chosen(const QString &stock);

private:
    void filter(const QString &text);

    Field *m_search;
    StockList *m_list;
    ScrollArea *m_scroll;
};

} // namespace tarnovel::app
