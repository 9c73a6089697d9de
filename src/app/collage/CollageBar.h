#pragma once

#include <QWidget>

#include "collage/CollageStudio.h"

namespace tarnovel::app {

class Button;
class Label;

/// The bar over the collage studio.
class CollageBar : public QWidget {
    Q_OBJECT

public:
    explicit CollageBar(CollageStudio &studio);

    QWidget *closeButton() const;

Q_SIGNALS:
    void closeAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showPhase();
    void showState();

    CollageStudio &m_studio;
    Button *m_close;
    Button *m_choose;
    Button *m_undo;
    Button *m_redo;
    Label *m_size;
    Button *m_save;
};

} // namespace tarnovel::app
