#include "app/collage/CollageBar.h"

#include <QBoxLayout>
#include <QEvent>
#include <QKeySequence>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int barHeight = 56;
constexpr int ruleGap = 12;

} // namespace

CollageBar::CollageBar(CollageStudio &studio)
    : m_studio(studio),
      m_close(new Button(Button::Kind::Ghost, said({"取消", "Cancel", "Annuler"}))),
      m_choose(new Button(Button::Kind::Ghost, said({"选择照片", "Choose photos", "Choisir les photos"}),
                          "manage")),
      m_undo(new Button(Button::Kind::Ghost, said({"撤销", "Undo", "Annuler l’action"}), "undo",
                        Button::Face::IconOnly)),
      m_redo(new Button(Button::Kind::Ghost, said({"重做", "Redo", "Rétablir l’action"}), "redo",
                        Button::Face::IconOnly)),
      m_save(new Button(Button::Kind::Primary, said({"保存拼图", "Save collage", "Enregistrer le collage"})))
{
    setFixedHeight(barHeight);
    m_close->setObjectName(u"closeCollage"_s);
    m_save->setObjectName(u"saveCollage"_s);
    m_size = new Label(
        Type::Label,
        [this] {
            if (m_studio.design().cells.isEmpty()) {
                return QString();
            }
            const QSize size = m_studio.outputSize();
            return QString::number(size.width()) + u" × "_s + QString::number(size.height()) + u" px"_s;
        },
        Label::Tone::Secondary);
    m_size->setWordWrap(false);
    m_undo->setKeyHint(QKeySequence(Qt::CTRL | Qt::Key_Z).toString(QKeySequence::NativeText));
    m_redo->setKeyHint(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z).toString(QKeySequence::NativeText));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(16, 0, 16, 0);
    row->setSpacing(4);
    row->addWidget(m_close);
    row->addSpacing(2 * ruleGap - 8);
    row->addWidget(m_choose);
    row->addStretch();
    row->addWidget(m_undo);
    row->addWidget(m_redo);
    row->addSpacing(12);
    row->addWidget(m_size);
    row->addSpacing(12);
    row->addWidget(m_save);
    connect(m_close, &QPushButton::clicked, this, &CollageBar::closeAsked);
    connect(m_choose, &QPushButton::clicked, this, [this] { m_studio.choosePhotos(); });
    connect(m_undo, &QPushButton::clicked, this, [this] { m_studio.undo(); });
    connect(m_redo, &QPushButton::clicked, this, [this] { m_studio.redo(); });
    connect(m_save, &QPushButton::clicked, this, [this] { m_studio.finish(); });
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & CollageStudio::PhaseChanged) {
            showPhase();
        }
        if (changes &
            (CollageStudio::PhaseChanged | CollageStudio::HistoryChanged | CollageStudio::PhotosChanged)) {
            showState();
        }
        if (changes & CollageStudio::DesignChanged) {
            m_size->refresh();
        }
    });
    showPhase();
    showState();
}

QWidget *CollageBar::closeButton() const
{
    return m_close;
}

void CollageBar::showPhase()
{
    const bool board = !m_studio.choosing();
    for (QWidget *part : std::initializer_list<QWidget *>{m_choose, m_undo, m_redo, m_size, m_save}) {
        part->setVisible(board);
    }
    m_save->setBusy(m_studio.saving());
    m_save->setPhrase(m_studio.saving() ? said({"正在保存…", "Saving…", "Enregistrement…"})
                                        : said({"保存拼图", "Save collage", "Enregistrer le collage"}));
    m_size->refresh();
    update();
}

void CollageBar::showState()
{
    m_choose->setEnabled(m_studio.editable());
    m_undo->setEnabled(m_studio.canUndo());
    m_redo->setEnabled(m_studio.canRedo());
    // A disabled primary button would lose its ring of work under way.
    m_save->setEnabled(m_studio.canFinish() || m_studio.saving());
}

void CollageBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        update();
    }
    QWidget::changeEvent(event);
}

void CollageBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(0, height() - 1), QPointF(width(), height() - 1));
    painter.setFont(typeFont(Type::Heading));
    painter.setPen(theme().ink);
    painter.drawText(rect(), Qt::AlignCenter, localized({"拼图", "Collage", "Collage"}));
    if (m_choose->isVisible()) {
        const int x = m_close->geometry().right() + ruleGap;
        Paint::hairline(painter, QPointF(x, 18), QPointF(x, 38));
    }
}

} // namespace tarnovel::app
