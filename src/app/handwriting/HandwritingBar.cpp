#include "app/handwriting/HandwritingBar.h"

#include <QEvent>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Segments.h"
#include "app/kit/Theme.h"
#include "handwriting/HandwritingController.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int modeWidth = 208;
constexpr int ruleHeight = 20;
enum Mode { Draw, Move };

class BarRule : public QWidget {
public:
    BarRule() { setFixedSize(9, ruleHeight); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::hairline(painter, {4, 0}, QPointF(4, height()));
    }
};

} // namespace

HandwritingBar::HandwritingBar()
    : PageBar(said({"手写", "Handwriting", "Écriture"})),
      m_mode(new Segments({said({"书写", "Draw", "Dessiner"}), said({"移动", "Move", "Déplacer"})})),
      m_undo(new Button(Button::Kind::Ghost, said({"撤销", "Undo", "Annuler le trait"}), "undo",
                        Button::Face::IconOnly)),
      m_redo(new Button(Button::Kind::Ghost, said({"重做", "Redo", "Rétablir le trait"}), "redo",
                        Button::Face::IconOnly)),
      m_clear(new Button(Button::Kind::Ghost, said({"清空", "Clear", "Effacer"}))),
      m_done(new Button(Button::Kind::Primary, said({"完成", "Done", "Terminer"})))
{
    setClosePhrase(said({"取消", "Cancel", "Annuler"}));
    m_undo->setObjectName(u"undo"_s);
    m_clear->setObjectName(u"clearInk"_s);
    m_done->setObjectName(u"done"_s);
    m_mode->setIcons({"pencil", "hand"});
    m_mode->setFixedWidth(modeWidth);
    m_undo->setKeyHint(u"Ctrl+Z"_s);
    m_redo->setKeyHint(u"Ctrl+Shift+Z"_s);
    for (QWidget *widget : std::initializer_list<QWidget *>{m_mode, m_undo, m_redo, m_clear, m_done}) {
        // A click leaves the keyboard with the page.
        widget->setFocusPolicy(Qt::TabFocus);
        addAction(widget);
        if (widget == m_mode) {
            addAction(new BarRule);
        }
    }
    closeButton()->setFocusPolicy(Qt::TabFocus);
    connect(m_mode, &ItemView::chosen, this, [this](int index) { Q_EMIT movingChosen(index == Move); });
    connect(m_undo, &QPushButton::clicked, this, &HandwritingBar::undoAsked);
    connect(m_redo, &QPushButton::clicked, this, &HandwritingBar::redoAsked);
    connect(m_clear, &QPushButton::clicked, this, &HandwritingBar::clearAsked);
    connect(m_done, &QPushButton::clicked, this, &HandwritingBar::doneAsked);
    name();
}

void HandwritingBar::display(const HandwritingController &studio)
{
    const bool idle = !studio.saving();
    m_mode->setCurrent(studio.moving() ? Move : Draw);
    m_mode->setEnabled(idle);
    m_undo->setEnabled(idle && studio.canUndo());
    m_redo->setEnabled(idle && studio.canRedo());
    m_clear->setEnabled(idle && !studio.isEmpty());
    m_done->setBusy(!idle);
    closeButton()->setEnabled(idle);
}

void HandwritingBar::name()
{
    m_mode->setAccessibleName(localized({"模式", "Mode", "Mode"}));
}

void HandwritingBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        name();
    }
    PageBar::changeEvent(event);
}

} // namespace tarnovel::app
