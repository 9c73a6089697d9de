#pragma once

#include <QWidget>

#include "app/kit/Phrase.h"

class QHBoxLayout;

namespace tarnovel::app {

class Button;

/// The bar over a page that takes the whole window: its way back at the left, its name in the middle.
class PageBar : public QWidget {
    Q_OBJECT

public:
    explicit PageBar(Phrase title);

    /// Puts a button at the right end.
    void addAction(QWidget *button);
    QWidget *closeButton() const;
    /// For a page whose way back gives something up: a word without the cross.
    void setClosePhrase(Phrase phrase);

Q_SIGNALS:
    void closeAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    Phrase m_title;
    QHBoxLayout *m_row;
    Button *m_close;
};

} // namespace tarnovel::app
