#include "app/collage/CollageScreen.h"

#include <utility>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStackedWidget>

#include "app/collage/CollageBar.h"
#include "app/collage/CollageBoard.h"
#include "app/collage/CollageChooser.h"
#include "app/collage/CollagePanel.h"
#include "app/collage/LayoutStrip.h"
#include "app/collage/LimitNotice.h"
#include "app/collage/PhotoColumn.h"
#include "app/kit/Overlay.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int messageGap = 16;
constexpr int layoutsHeight = 128;
constexpr int panelWidth = 304;
constexpr int photosWidth = 104;

} // namespace

CollageScreen::CollageScreen(const EditorContext &context, FileChooser chooser)
    : m_context(context),
      m_files(std::move(chooser)),
      m_column(new QVBoxLayout(this)),
      m_toast(new Toast(this)),
      m_limit(new LimitNotice(this))
{
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);
}

CollageScreen::~CollageScreen()
{
    // The screens read the studio to the end.
    delete m_visit;
}

void CollageScreen::begin()
{
    if (m_studio) {
        end();
    }
    m_retired.reset();
    m_arranged = false;
    m_toast->hide();
    m_limit->hide();
    m_studio = std::make_unique<CollageStudio>(m_context.model, m_context.pipeline, m_context.clock);
    m_visit = new QWidget;
    auto *column = new QVBoxLayout(m_visit);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_bar = new CollageBar(*m_studio);
    m_pages = new QStackedWidget;
    m_chooser = new CollageChooser(*m_studio);
    m_pages->addWidget(m_chooser);
    m_pages->addWidget(makeBoardPage());
    column->addWidget(m_bar);
    column->addWidget(m_pages, 1);
    m_column->addWidget(m_visit);
    m_visit->show();
    connect(m_bar, &CollageBar::closeAsked, this, [this] { askToClose(); });
    connect(m_chooser, &CollageChooser::filesAsked, this, &CollageScreen::chooseFiles);
    connect(m_photos, &PhotoColumn::filesAsked, this, &CollageScreen::chooseFiles);
    connect(m_board, &CollageBoard::replaceAsked, this, &CollageScreen::replaceFromFile);
    connect(m_studio.get(), &CollageStudio::changed, this, &CollageScreen::studioChanged);
    showPhase();
    m_chooser->setFocus();
}

QWidget *CollageScreen::makeBoardPage()
{
    auto *page = new QWidget;
    auto *row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    m_photos = new PhotoColumn(*m_studio);
    m_board = new CollageBoard(m_context.state, *m_studio);
    m_layouts = new LayoutStrip(*m_studio);
    m_panel = new CollagePanel(m_context.state, *m_studio);
    auto *middle = new QVBoxLayout;
    middle->setSpacing(0);
    middle->addWidget(m_board, 1);
    middle->addWidget(m_layouts);
    row->addWidget(m_photos);
    row->addLayout(middle, 1);
    row->addWidget(m_panel);
    return page;
}

void CollageScreen::studioChanged(CollageStudio::Changes changes)
{
    if (changes & CollageStudio::HistoryChanged && m_studio->editable()) {
        m_arranged = m_studio->canUndo();
    }
    if (changes & CollageStudio::LimitReached) {
        place();
        m_toast->hide();
        m_limit->present();
    }
    if (changes & CollageStudio::MessageChanged && !m_studio->message().isEmpty()) {
        m_toast->say(m_studio->message(), m_studio->messageKind() == CollageStudio::MessageKind::Hint
                                              ? Toast::Kind::Plain
                                              : Toast::Kind::Error);
    }
    if (changes & CollageStudio::PhaseChanged) {
        if (m_studio->closed()) {
            // Others still hear of this change.
            QMetaObject::invokeMethod(
                this,
                [this, done = QPointer<CollageStudio>(m_studio.get())] {
                    if (done && done == m_studio.get()) {
                        end();
                        Q_EMIT finished();
                    }
                },
                Qt::QueuedConnection);
            return;
        }
        showPhase();
    }
}

void CollageScreen::showPhase()
{
    const bool choosing = m_studio->choosing();
    QWidget *shown = m_pages->widget(choosing ? 0 : 1);
    m_photos->setEnabled(!m_studio->saving());
    if (m_pages->currentWidget() != shown) {
        m_pages->setCurrentWidget(shown);
        if (choosing) {
            m_chooser->setFocus();
        } else {
            m_board->setFocus();
        }
    }
    place();
}

void CollageScreen::addFiles(const QStringList &paths)
{
    if (m_studio && !m_studio->saving() && !paths.isEmpty()) {
        m_studio->addFiles(paths);
    }
}

void CollageScreen::chooseFiles()
{
    m_files.photos(this, [screen = QPointer<CollageScreen>(this)](const QStringList &files) {
        if (screen) {
            screen->addFiles(files);
        }
    });
}

void CollageScreen::replaceFromFile(int slot)
{
    m_files.picture(this, [studio = QPointer<CollageStudio>(m_studio.get()), slot](const QStringList &files) {
        if (studio && !files.isEmpty()) {
            studio->replacePhoto(slot, files.first());
        }
    });
}

void CollageScreen::askToClose(const std::function<void()> &then)
{
    if (!m_studio) {
        return;
    }
    const auto leaveThen = [this, then] {
        leave();
        if (then) {
            then();
        }
    };
    if (!m_arranged) {
        leaveThen();
        return;
    }
    if (m_question) {
        return;
    }
    m_question = ask(m_bar->closeButton(),
                     {said({"放弃这个拼图？", "Discard this collage?", "Abandonner ce collage ?"}),
                      said({"版式和调整不会保留。", "Its layout and adjustments will be lost.",
                            "Sa mise en page et ses réglages seront perdus."}),
                      said({"放弃", "Discard", "Abandonner"})},
                     leaveThen);
}

void CollageScreen::leave()
{
    if (m_studio) {
        end();
        Q_EMIT closeAsked();
    }
}

void CollageScreen::end()
{
    m_context.state.endPicking();
    if (m_question) {
        m_question->close();
    }
    m_studio->disconnect(this);
    const bool saving = m_studio->saving();
    m_studio->cancel();
    QWidget *visit = std::exchange(m_visit, nullptr);
    visit->hide();
    m_column->removeWidget(visit);
    const std::shared_ptr<CollageStudio> studio = std::move(m_studio);
    if (saving) {
        m_retired = studio;
    }
    // The button that ended the visit is one of its widgets; and those read the studio to their end.
    QMetaObject::invokeMethod(
        this, [visit, studio] { delete visit; }, Qt::QueuedConnection);
    m_pages = nullptr;
    m_bar = nullptr;
    m_chooser = nullptr;
    m_photos = nullptr;
    m_board = nullptr;
    m_layouts = nullptr;
    m_panel = nullptr;
}

void CollageScreen::place()
{
    const bool board = m_studio && !m_studio->choosing();
    const int bottom = board ? layoutsHeight : CollageChooser::trayHeight;
    const int left = board ? photosWidth : 0;
    const int right = board ? width() - panelWidth : width();
    const QPoint anchor((left + right) / 2, height() - bottom - messageGap);
    m_toast->setAnchor(anchor, right - left - 2 * messageGap);
    m_limit->setAnchor(anchor);
}

void CollageScreen::resizeEvent(QResizeEvent *event)
{
    place();
    QWidget::resizeEvent(event);
}

void CollageScreen::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), theme().canvas);
}

void CollageScreen::keyPressEvent(QKeyEvent *event)
{
    if (!m_studio) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->key() == Qt::Key_Escape && m_context.state.colorTaker()) {
        m_context.state.endPicking();
    } else if (event->key() == Qt::Key_Escape && !m_studio->choosing() && m_studio->selected()) {
        m_studio->select({});
    } else if (event->key() == Qt::Key_Escape) {
        askToClose();
    } else if (event->matches(QKeySequence::Redo)) {
        m_studio->redo();
    } else if (event->matches(QKeySequence::Undo)) {
        m_studio->undo();
    } else if (event->matches(QKeySequence::Open)) {
        chooseFiles();
    } else {
        QWidget::keyPressEvent(event);
    }
}

bool CollageScreen::event(QEvent *event)
{
    // The window's own undo and add keys mean the studio's while it is open.
    if (event->type() == QEvent::ShortcutOverride && m_studio) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Redo) || key->matches(QKeySequence::Undo) ||
            key->matches(QKeySequence::Open) || key->key() == Qt::Key_Escape) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

} // namespace tarnovel::app
