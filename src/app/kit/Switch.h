#pragma once

#include <QCheckBox>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A row with a text and a switch at its right end; the whole row takes the click.
class Switch : public QCheckBox {
    Q_OBJECT

public:
    enum class Side { TextLeft, TextRight };

    explicit Switch(Phrase phrase, Side side = Side::TextLeft, QWidget *parent = nullptr);

    /// Shows a value; `toggledByUser` is not told.
    void show(bool on);
    using QWidget::show;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

Q_SIGNALS:
    void toggledByUser(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }

private:
    QString text() const { return m_phrase(); }

    Phrase m_phrase;
    Side m_side;
};

} // namespace tarnovel::app
