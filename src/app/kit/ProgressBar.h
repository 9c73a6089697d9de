#pragma once

#include <QProgressBar>

namespace tarnovel::app {

/// A thin line that fills.
class ProgressBar : public QProgressBar {
    Q_OBJECT

public:
    explicit ProgressBar(QWidget *parent = nullptr);
    QSize sizeHint() const override { return {120, 4}; }
    QSize minimumSizeHint() const override { return {40, 4}; }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tarnovel::app
