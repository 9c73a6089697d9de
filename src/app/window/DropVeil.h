#pragma once

#include <QWidget>

namespace tarnovel::app {

/// What lies over the picture while files are being dragged over the window: it says what dropping them would
/// do.
class DropVeil : public QWidget {
    Q_OBJECT

public:
    enum class Offer { Photos, Background, Nothing };

    explicit DropVeil(QWidget *parent);

    void offer(Offer offer, qsizetype count);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Offer m_offer = Offer::Photos;
    qsizetype m_count = 0;
};

} // namespace tarnovel::app
