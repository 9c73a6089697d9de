#include "app/export/ExportPanel.h"

#include <utility>

#include <QAccessible>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QPainter>

#include "app/Wording.h"
#include "app/export/ExportForm.h"
#include "app/export/ProblemCard.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/ProgressBar.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Theme.h"
#include "export/ExportReviewPolicy.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int panelWidth = 384;
constexpr int inset = 24;
constexpr int headerHeight = 56;

} // namespace

ExportPanel::ExportPanel(const EditorContext &context, const FileChooser &chooser, PhotoLibrary &library)
    : m_context(context),
      m_chooser(chooser),
      m_jobs(context.model, context.pipeline, library),
      m_form(new ExportForm(context.model, context.preferences, &context.pipeline))
{
    setFixedWidth(panelWidth);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(1, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    auto *area = new ScrollArea;
    area->hold(m_form);
    column->addWidget(area, 1);
    column->addWidget(makeFooter());
    connect(m_form, &ExportForm::changed, this, &ExportPanel::refresh);
    connect(&m_jobs, &ExportJobs::changed, this, &ExportPanel::jobsChanged);
    connect(&m_jobs.library(), &LibraryExport::succeeded, this, [this] {
        ExportReviewPolicy::recordSuccess(m_context.preferences, QStringLiteral(TARNOVEL_VERSION),
                                          QCoreApplication::arguments(),
                                          QProcessEnvironment::systemEnvironment());
        Q_EMIT exportedToLibrary();
    });
    connect(&context.model, &EditorModel::changed, this, [this] {
        if (isVisible()) {
            refresh();
        }
    });
    refresh();
}

QWidget *ExportPanel::makeHeader()
{
    auto *header = new QWidget;
    header->setFixedHeight(headerHeight);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(inset, 0, 16, 0);
    row->addWidget(new Label(Type::Heading, said({"导出", "Export", "Exporter"})), 1);
    auto *close =
        new Button(Button::Kind::Ghost, said({"关闭", "Close", "Fermer"}), "close", Button::Face::IconOnly);
    connect(close, &QPushButton::clicked, this, &ExportPanel::closeAsked);
    row->addWidget(close);
    return header;
}

QWidget *ExportPanel::makeFooter()
{
    auto *footer = new QWidget;
    auto *column = new QVBoxLayout(footer);
    column->setContentsMargins(inset, 16, inset, 16);
    column->setSpacing(12);
    m_error = new Label(Type::Body, {}, Label::Tone::Danger);
    column->addWidget(m_error);
    m_errorDetail = new Label(Type::Label, {}, Label::Tone::Secondary);
    column->addWidget(m_errorDetail);
    m_otherFolder =
        new Button(Button::Kind::Secondary,
                   said({"选择其他文件夹…", "Choose another folder…", "Choisir un autre dossier…"}));
    column->addWidget(m_otherFolder, 0, Qt::AlignLeft);
    m_progressBox = new QWidget;
    auto *box = new QVBoxLayout(m_progressBox);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(12);
    auto *names = new QHBoxLayout;
    m_status = new Label(Type::BodyStrong, {});
    m_photo = new Label(Type::Label, {}, Label::Tone::Secondary);
    m_photo->setWordWrap(false);
    names->addWidget(m_status, 1);
    names->addWidget(m_photo);
    box->addLayout(names);
    m_bar = new ProgressBar;
    box->addWidget(m_bar);
    auto *below = new QHBoxLayout;
    m_note = new Label(Type::Label, {}, Label::Tone::Secondary);
    below->addWidget(m_note, 1);
    m_cancel = new Button(Button::Kind::Secondary, [] { return ExportTexts::cancelButton(); });
    below->addWidget(m_cancel);
    box->addLayout(below);
    column->addWidget(m_progressBox);
    m_problem = new ProblemCard(m_context.thumbnails);
    m_problem->hide();
    column->addWidget(m_problem);
    m_start = new Button(Button::Kind::Primary, [this] {
        return m_form->toLibrary()
                   ? localized({"保存到“图片”", "Save to Pictures", "Enregistrer dans Images"})
                   : ExportTexts::startButton(m_form->choices().photos(m_context.model).size());
    });
    m_start->setHeight(40);
    m_start->setObjectName(u"startExport"_s);
    m_start->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    column->addWidget(m_start);
    connect(m_start, &QPushButton::clicked, this, &ExportPanel::start);
    connect(m_cancel, &QPushButton::clicked, this, &ExportPanel::cancel);
    // Where the pictures folder takes nothing, any other may.
    connect(m_otherFolder, &QPushButton::clicked, this, [this] {
        m_chooser.folder(window(), [this](const QString &folder) {
            m_form->chooseFolder();
            m_jobs.startToFolder(m_form->choices(), folder);
        });
    });
    connect(m_problem, &ProblemCard::stopAsked, this, [this] { m_jobs.run().stop(); });
    connect(m_problem, &ProblemCard::retryAsked, this, [this] { m_jobs.run().retry(); });
    connect(m_problem, &ProblemCard::skipAsked, this,
            [this](ExportRun::Skipping which) { m_jobs.run().skip(which); });
    return footer;
}

QString ExportPanel::progress() const
{
    return working() ? u"%1 / %2"_s.arg(m_jobs.done()).arg(m_jobs.total()) : QString();
}

void ExportPanel::open()
{
    if (!working()) {
        m_form->reset();
    }
    refresh();
    if (problem()) {
        m_problem->focusDefault();
    } else {
        m_start->setFocus();
    }
}

void ExportPanel::refresh()
{
    m_form->refresh();
    m_start->refresh();
    showRun();
}

void ExportPanel::showRun()
{
    const bool busy = working();
    m_form->setBusy(busy);
    // The keyboard goes with the button that takes the other's place.
    // Of the window, which a dialog that closes has not given the keyboard back to yet.
    const QWidget *keyboard = window()->focusWidget();
    const bool held = keyboard == m_start || keyboard == m_cancel;
    m_progressBox->setVisible(busy);
    m_start->setVisible(!busy);
    m_start->setEnabled(!busy && m_context.model.current());
    const bool saving = m_jobs.saving();
    const int done = m_jobs.done();
    const int total = m_jobs.total();
    m_status->setPhrase([saving, done, total] {
        return saving ? Wording::local(LibraryExport::savingText()) : ExportTexts::progress(done, total);
    });
    m_bar->setRange(0, std::max(total, 1));
    m_bar->setValue(done);
    m_bar->setAccessibleName(m_status->text());
    m_note->setPhrase([saving] {
        return saving ? LibraryExport::savingHint()
                      : localized({"可以继续编辑。", "You can keep editing meanwhile.",
                                   "Vous pouvez continuer à éditer."});
    });
    m_cancel->setVisible(!saving);
    if (held && !problem() && !(busy ? m_cancel : m_start)->hasFocus()) {
        (busy ? m_cancel : m_start)->setFocus(Qt::OtherFocusReason);
    }
    m_photo->setPhrase([name = m_jobs.run().current() ? m_jobs.run().current()->name : QString(),
                        width = panelWidth / 2 - inset, label = m_photo] {
        return label->fontMetrics().elidedText(name, Qt::ElideMiddle, width);
    });
    showProblem();
    showError();
    Q_EMIT progressed();
}

void ExportPanel::showProblem()
{
    const std::optional<ExportProblem> &problem = m_jobs.run().problem();
    const bool appears = problem && m_problem->isHidden();
    m_note->parentWidget()->setVisible(working());
    m_note->setVisible(!problem);
    m_cancel->setVisible(m_cancel->isVisibleTo(m_progressBox) && !problem);
    if (!problem) {
        m_problem->hide();
        return;
    }
    const int done = m_bar->value();
    const int total = m_bar->maximum();
    m_status->setPhrase([done, total] {
        return localized({"已暂停 ", "Paused at ", "En pause à "}) + u"%1 / %2"_s.arg(done).arg(total);
    });
    m_photo->setPhrase(said({"1 个问题", "1 problem", "1 problème"}));
    m_problem->show(*problem);
    if (appears && isVisible()) {
        m_problem->focusDefault();
    } else if (appears) {
        m_context.state.say(problem->photo.name + localized({"：", ": ", "\u202f: "}) + problem->cause,
                            Toast::Kind::Error);
    }
}

void ExportPanel::showError()
{
    const bool toLibrary = m_form->toLibrary();
    const LibraryExport &library = m_jobs.library();
    const FolderExport &folder = m_jobs.folder();
    const QString error = Wording::local(toLibrary ? library.error() : folder.error());
    const bool shown = !working() && !error.isEmpty();
    m_error->setVisible(shown);
    m_error->setTone((toLibrary ? library.cancelled() : folder.cancelled()) ? Label::Tone::Secondary
                                                                            : Label::Tone::Danger);
    m_error->setPhrase([text = QString(error)]() mutable { return text; });
    const std::optional<ExportProblem> &failure = m_jobs.run().failure();
    const QString detail = toLibrary && library.denied() ? library.refusal()
                           : failure
                               ? failure->photo.name + localized({"：", ": ", "\u202f: "}) + failure->cause
                               : QString();
    m_errorDetail->setVisible(shown && !detail.isEmpty());
    m_errorDetail->setPhrase([detail] { return QString(detail); });
    m_otherFolder->setVisible(shown && toLibrary && library.denied());
}

void ExportPanel::start()
{
    if (m_form->choices().photos(m_context.model).isEmpty() || working()) {
        return;
    }
    if (m_form->toLibrary()) {
        m_jobs.startToLibrary(m_form->choices());
        return;
    }
    m_chooser.folder(window(),
                     [this](const QString &folder) { m_jobs.startToFolder(m_form->choices(), folder); });
}

void ExportPanel::cancel()
{
    m_cancel->setEnabled(false);
    m_jobs.cancel();
}

void ExportPanel::jobsChanged()
{
    m_cancel->setEnabled(true);
    showRun();
    const std::optional<ExportResult> &result = m_jobs.folder().result();
    if (result && result->id != m_lastResult) {
        m_lastResult = result->id;
        Q_EMIT exportedToFolder();
    }
    const bool idle = m_jobs.library().phase() == LibraryExport::Phase::Idle;
    tellError(working()               ? QString()
              : !m_jobs.intoLibrary() ? m_jobs.folder().error()
              : idle                  ? m_jobs.library().error()
                                      : QString());
}

void ExportPanel::tellError(const QString &error)
{
    if (error == m_told) {
        return;
    }
    m_told = error;
    if (!error.isEmpty() && !isVisible()) {
        m_context.state.say(Wording::local(error), Toast::Kind::Error);
    } else if (!error.isEmpty()) {
        QAccessibleEvent alert(m_error, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ExportPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        refresh();
    }
    QWidget::changeEvent(event);
}

void ExportPanel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().surface);
    Paint::hairline(painter, QPointF(0, 0), QPointF(0, height()));
    const int y = m_start->parentWidget()->geometry().top();
    Paint::hairline(painter, QPointF(0, y), QPointF(width(), y));
}

} // namespace tarnovel::app
