#pragma once

#include <QStringList>

#include "app/kit/ItemView.h"

namespace tarnovel::app {

/// Rows of which one is chosen, each with a value at its end.
class SizeChoice : public ItemView {
    Q_OBJECT

public:
    struct Row {
        QString label;
        QString value;
        /// The value warns: this choice cannot be used.
        bool danger = false;
    };

    SizeChoice();

    void setRows(const QList<Row> &rows);

    int count() const override { return static_cast<int>(m_rows.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    QSize sizeHint() const override;

protected:
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    QList<Row> m_rows;
};

} // namespace tarnovel::app
