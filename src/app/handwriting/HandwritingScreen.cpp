#include "app/handwriting/HandwritingScreen.h"

#include <algorithm>
#include <utility>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "app/handwriting/HandwritingBar.h"
#include "app/handwriting/HandwritingTools.h"
#include "app/handwriting/InkCanvas.h"
#include "app/handwriting/StageNotes.h"
#include "app/kit/Button.h"
#include "app/kit/Overlay.h"
#include "app/kit/Theme.h"
#include "base/Json.h"
#include "base/Log.h"
#include "handwriting/HandwritingReference.h"
#include "pipeline/ImagePipeline.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr double zoomStep = 1.25;
constexpr int noteMargin = 24;
/// Between the guide and the page.
constexpr int guideGap = 24;
constexpr int guidePadding = 20;

constexpr HandwritingController::Changes everything =
    HandwritingController::ToolChanged | HandwritingController::HistoryChanged |
    HandwritingController::ViewportChanged | HandwritingController::SavingChanged;

Phrase howToWrite()
{
    return said({"书写说明", "How to write here", "Comment écrire ici"});
}

} // namespace

HandwritingScreen::HandwritingScreen(const EditorContext &context)
    : m_context(context),
      m_keys(makeKeys()),
      m_bar(new HandwritingBar),
      m_canvas(new InkCanvas(context.state)),
      m_tools(new HandwritingTools(context.state)),
      m_guide(new WritingGuide(this)),
      m_guideButton(new Button(Button::Kind::Secondary, howToWrite(), "info", Button::Face::IconOnly, this)),
      m_zoom(new ZoomControl(this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_bar);
    column->addWidget(m_canvas, 1);
    column->addWidget(m_tools);
    m_guide->setAttribute(Qt::WA_TransparentForMouseEvents);
    for (QWidget *note : std::initializer_list<QWidget *>{m_guide, m_guideButton, m_zoom}) {
        note->raise();
    }
    m_guideButton->setObjectName(u"writingHelp"_s);
    m_guideButton->setFocusPolicy(Qt::TabFocus);
    connectBars();
}

HandwritingScreen::~HandwritingScreen()
{
    m_stop.request_stop();
    m_canvas->setStudio(nullptr);
}

void HandwritingScreen::connectBars()
{
    const auto withStudio = [this](auto action) {
        return [this, action](auto... arguments) {
            if (m_studio && !m_studio->saving()) {
                ((*m_studio).*action)(arguments...);
            }
        };
    };
    connect(m_bar, &PageBar::closeAsked, this, &HandwritingScreen::close);
    connect(m_bar, &HandwritingBar::movingChosen, this, withStudio(&HandwritingController::setMoving));
    connect(m_bar, &HandwritingBar::undoAsked, this, withStudio(&HandwritingController::undo));
    connect(m_bar, &HandwritingBar::redoAsked, this, withStudio(&HandwritingController::redo));
    connect(m_bar, &HandwritingBar::clearAsked, this, withStudio(&HandwritingController::clear));
    connect(m_bar, &HandwritingBar::doneAsked, this, &HandwritingScreen::done);
    connect(m_tools, &HandwritingTools::toolChosen, this, &HandwritingScreen::take);
    connect(m_tools, &HandwritingTools::colorChosen, this, withStudio(&HandwritingController::setColor));
    connect(m_tools, &HandwritingTools::widthChosen, this, withStudio(&HandwritingController::setWidth));
    connect(m_tools, &HandwritingTools::finishChosen, this, withStudio(&HandwritingController::setFinish));
    connect(m_zoom, &ZoomControl::largerAsked, this, [this] { m_canvas->zoomBy(zoomStep); });
    connect(m_zoom, &ZoomControl::smallerAsked, this, [this] { m_canvas->zoomBy(1 / zoomStep); });
    connect(m_zoom, &ZoomControl::fitAsked, this, [this] { m_canvas->zoomToFit(); });
    connect(m_guideButton, &QPushButton::clicked, this, &HandwritingScreen::openGuide);
}

bool HandwritingScreen::resume()
{
    if (!hasUnsavedInk() || !m_context.model.photo(m_photo)) {
        return false;
    }
    m_context.model.select(m_photo);
    m_canvas->setFocus();
    return true;
}

bool HandwritingScreen::begin()
{
    if (resume()) {
        return true;
    }
    const PhotoItem *photo = m_context.model.current();
    if (!photo) {
        return false;
    }
    end();
    m_photo = photo->id;
    const HandwritingReference reference = HandwritingReference::of(*photo);
    m_studio = std::make_unique<HandwritingController>(m_context.model, m_context.clock, reference.size,
                                                       reference.focusY);
    connectStudio();
    m_canvas->setStudio(m_studio.get());
    renderReference();
    display(everything);
    m_canvas->setFocus();
    return true;
}

bool HandwritingScreen::resume(const QByteArray &draft)
{
    InkDraft kept;
    try {
        kept = readInkDraft(draft);
    } catch (const JsonError &error) {
        qCWarning(logApp) << "a draft cannot be read:" << error.what();
        return false;
    }
    if (!m_context.model.photo(kept.photo)) {
        return false;
    }
    end();
    m_context.model.select(kept.photo);
    if (!begin()) {
        return false;
    }
    m_studio->resume(kept);
    return true;
}

QByteArray HandwritingScreen::draft()
{
    return m_studio ? m_studio->draft(m_photo) : QByteArray();
}

void HandwritingScreen::connectStudio()
{
    connect(m_studio.get(), &HandwritingController::changed, this, &HandwritingScreen::display);
    // Later, for the studio goes with its visit.
    connect(
        m_studio.get(), &HandwritingController::saved, this,
        [this] {
            end();
            m_context.state.say(localized({"签名已添加", "Signature added", "Signature ajoutée"}),
                                Toast::Kind::Done);
            Q_EMIT finished();
        },
        Qt::QueuedConnection);
    connect(m_studio.get(), &HandwritingController::saveFailed, this,
            [this](const QString &message) { m_context.state.say(message, Toast::Kind::Error); });
}

void HandwritingScreen::renderReference()
{
    const PhotoItem &photo = *m_context.model.current();
    m_canvas->setReference({});
    whenArrived<QImage>(
        HandwritingReference::of(photo).render(m_context.pipeline, photo, m_stop.get_token()), this,
        m_stop.get_token(), [this](const QImage &image) { m_canvas->setReference(image); },
        [this] {
            m_context.state.say(localized({"无法显示这张照片。", "This photo could not be shown.",
                                           "Impossible d’afficher cette photo."}),
                                Toast::Kind::Error);
        });
}

void HandwritingScreen::end()
{
    m_stop.request_stop();
    m_stop = {};
    m_held = false;
    m_canvas->setStudio(nullptr);
    m_canvas->setReference({});
    m_studio.reset();
}

bool HandwritingScreen::hasUnsavedInk() const
{
    return m_studio && (!m_studio->isEmpty() || m_studio->penIsDown());
}

void HandwritingScreen::leave(std::function<void()> then)
{
    if (m_studio && m_studio->saving()) {
        return;
    }
    const auto go = [this, then = std::move(then)] {
        m_context.state.endPicking();
        end();
        then();
    };
    if (!hasUnsavedInk()) {
        go();
        return;
    }
    ask(m_bar->closeButton(),
        {said({"放弃这次书写？", "Discard what you wrote?", "Abandonner ce que vous avez écrit ?"}),
         said({"笔画尚未保存，离开后无法恢复。", "The strokes are not saved, and leaving cannot be undone.",
               "Les traits ne sont pas enregistrés et seront perdus."}),
         said({"放弃", "Discard", "Abandonner"})},
        go);
}

void HandwritingScreen::close()
{
    leave([this] { Q_EMIT closeAsked(); });
}

void HandwritingScreen::done()
{
    if (!m_studio || m_studio->saving()) {
        return;
    }
    if (!hasUnsavedInk()) {
        close();
        return;
    }
    // Photos that were opened meanwhile may have taken the selection.
    if (!m_context.model.photo(m_photo)) {
        m_context.state.say(
            localized({"这张照片已被移除。", "This photo has been removed.", "Cette photo a été retirée."}),
            Toast::Kind::Error);
        return;
    }
    m_context.model.select(m_photo);
    m_studio->save();
}

void HandwritingScreen::display(HandwritingController::Changes changes)
{
    constexpr HandwritingController::Changes inBars = HandwritingController::ToolChanged |
                                                      HandwritingController::HistoryChanged |
                                                      HandwritingController::SavingChanged;
    if (changes & inBars) {
        m_bar->display(*m_studio);
        m_tools->display(*m_studio);
    }
    if (changes & HandwritingController::ViewportChanged) {
        const HandwritingViewport &viewport = m_studio->viewport();
        m_zoom->setZoom(viewport.relativeZoom(), viewport.maximumZoom() / viewport.minimumZoom());
    }
    if (changes & (HandwritingController::ViewportChanged | HandwritingController::HistoryChanged)) {
        placeNotes();
    }
}

void HandwritingScreen::placeNotes()
{
    // Beside the page in the widgets' tree, not on it: pens and fingers over them are not the page's.
    const QRect stage = m_canvas->geometry();
    const int bottom = stage.bottom() + 1 - noteMargin;
    const QSize zoom = m_zoom->sizeHint();
    m_zoom->setGeometry(
        QRect(QPoint(stage.right() + 5 - noteMargin - zoom.width(), bottom + 8 - zoom.height()), zoom));
    const QSize button = m_guideButton->sizeHint();
    m_guideButton->setGeometry(
        QRect(QPoint(stage.left() + noteMargin - 4, bottom + 4 - button.height()), button));
    const int beside = static_cast<int>(m_canvas->pageRect().left()) - noteMargin - guideGap;
    bool guided = m_studio && !hasUnsavedInk() && beside >= WritingGuide::leastWidth;
    if (guided) {
        const int width = std::min(beside, WritingGuide::mostWidth);
        const int height = m_guide->heightForWidth(width);
        guided = height <= stage.height() - 2 * noteMargin;
        m_guide->setGeometry(stage.left() + noteMargin, bottom - height, width, height);
    }
    m_guide->setVisible(guided);
    m_guideButton->setVisible(!guided);
}

void HandwritingScreen::openGuide()
{
    auto *overlay = new Overlay(Overlay::Kind::Popover, this, howToWrite());
    overlay->column()->setContentsMargins(guidePadding, guidePadding, guidePadding, guidePadding);
    overlay->column()->addWidget(new WritingGuide);
    overlay->setCardSize({WritingGuide::mostWidth + 2 * guidePadding, 0});
    overlay->anchorTo(m_guideButton);
    overlay->open();
}

HandwritingKeys HandwritingScreen::makeKeys()
{
    return HandwritingKeys({.undo = [this] { m_studio->undo(); },
                            .redo = [this] { m_studio->redo(); },
                            .take = [this](HandwritingTool tool) { take(tool); },
                            .move = [this](bool moving) { m_studio->setMoving(moving); },
                            .widen = [this](int sizes) { m_studio->setWidth(m_studio->width() + sizes); },
                            .enlarge = [this] { m_canvas->zoomBy(zoomStep); },
                            .reduce = [this] { m_canvas->zoomBy(1 / zoomStep); },
                            .fit = [this] { m_canvas->zoomToFit(); },
                            .leave =
                                [this] {
                                    if (m_context.state.colorTaker()) {
                                        m_context.state.endPicking();
                                    } else {
                                        close();
                                    }
                                },
                            .hold = [this] { hold(true); }});
}

void HandwritingScreen::take(HandwritingTool tool)
{
    m_studio->setTool(tool);
    m_studio->setMoving(false);
}

void HandwritingScreen::hold(bool moving)
{
    // The thumb that meets the space bar amid a stroke does not end it.
    if (!m_studio || moving == m_held || (moving && (m_studio->moving() || m_studio->penIsDown()))) {
        return;
    }
    m_held = moving;
    m_studio->setMoving(moving);
}

bool HandwritingScreen::event(QEvent *event)
{
    // These keys are the page's, whatever they mean to the window.
    if (event->type() == QEvent::ShortcutOverride && m_studio &&
        m_keys.find(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::WindowDeactivate) {
        hold(false);
    }
    return QWidget::event(event);
}

void HandwritingScreen::keyPressEvent(QKeyEvent *event)
{
    const std::function<void()> *act = m_studio ? m_keys.find(*event) : nullptr;
    if (!act) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool again = event->key() == Qt::Key_Space && event->isAutoRepeat();
    if (!m_studio->saving() && !again) {
        (*act)();
    }
}

void HandwritingScreen::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        hold(false);
        return;
    }
    QWidget::keyReleaseEvent(event);
}

void HandwritingScreen::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange && m_studio) {
        display(everything);
    }
}

void HandwritingScreen::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeNotes();
}

void HandwritingScreen::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
}

} // namespace tarnovel::app
