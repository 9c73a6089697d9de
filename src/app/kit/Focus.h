#pragma once

#include <QPointer>
#include <QWidget>

class QKeyEvent;

namespace tarnovel::app {

/// Enter of either kind, with no other key held.
bool isEnterKey(const QKeyEvent &event);

/// Whether the user is moving with the keyboard at the moment: rings of focus show only then.
bool keyboardFocusVisible();

/// The ring around the widget of a window that has the keyboard. It lies over everything and takes no clicks.
/// A widget with the property "paintsFocus" shows its focus itself; "focusRadius" is the ring's inner radius.
class FocusRing : public QWidget {
    Q_OBJECT

public:
    explicit FocusRing(QWidget *window);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void follow();
    QPointer<QWidget> m_target;
};

} // namespace tarnovel::app
