#pragma once

#include <QAbstractButton>
#include <QPointer>
#include <QWidget>

#include "app/kit/Phrase.h"

class QVBoxLayout;

namespace tarnovel::app {

/// A card over its window: a popover beside a control, or a sheet over a veil. It takes the keyboard and
/// gives it back; Esc and, for a popover, a click outside close it.
class Overlay : public QWidget {
    Q_OBJECT

public:
    enum class Kind { Popover, Sheet };

    Overlay(Kind kind, QWidget *window, Phrase name);

    /// The card's inside. Its margins are the content's own.
    QWidget *card() const { return m_card; }
    QVBoxLayout *column() const { return m_column; }
    void setCardSize(QSize size) { m_wanted = size; }
    /// Puts a popover above or below this widget, or at a point of the window.
    void anchorTo(QWidget *anchor);
    void anchorAt(QPoint inWindow);
    /// The button that Enter presses wherever in the card the keyboard is and has no use for it.
    void setDefaultButton(QAbstractButton *button) { m_default = button; }
    /// Where the keyboard starts; otherwise on the first control.
    void startOn(QWidget *control) { m_start = control; }
    void open();
    void close();

Q_SIGNALS:
    void closed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;

private:
    void place();

    Kind m_kind;
    Phrase m_name;
    QWidget *m_card;
    QVBoxLayout *m_column;
    QSize m_wanted;
    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_anchor;
    QPoint m_point;
    QPointer<QWidget> m_before;
    QPointer<QAbstractButton> m_default;
    QPointer<QWidget> m_start;
};

/// Asks before something goes: a popover over the button that asks. The keyboard starts on Cancel.
struct Question {
    Phrase title;
    Phrase text;
    Phrase confirm;
};
Overlay *ask(QWidget *anchor, const Question &question, std::function<void()> confirmed);

/// The same where nothing need go: the confirmation is the default, and a second way out stands beside Cancel.
Overlay *askTwoWays(QWidget *anchor, const Question &question, std::function<void()> confirmed,
                    const Phrase &second, std::function<void()> secondChosen);

/// Asks for a line of text. `accept` returns a complaint, or nothing when it has taken the text.
struct TextQuestion {
    Phrase title;
    Phrase text;
    Phrase fieldName;
    QString value = {};
    Phrase confirm;
    const char *icon = nullptr;
};
Overlay *askText(QWidget *anchor, const TextQuestion &question,
                 std::function<QString(const QString &)> accept);

} // namespace tarnovel::app
