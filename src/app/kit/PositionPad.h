#pragma once

#include "app/kit/ItemView.h"

namespace tarnovel::app {

/// Nine places in a square.
class PositionPad : public ItemView {
    Q_OBJECT

public:
    explicit PositionPad(QWidget *parent = nullptr);

    int count() const override { return 9; }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    QSize sizeHint() const override { return {96, 96}; }

protected:
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;
};

} // namespace tarnovel::app
