#include "app/export/ExportPanel.h"

#include <utility>

#include <QAccessible>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QPainter>

#include "app/Wording.h"
#include "app/export/ProblemCard.h"
#include "app/export/SizeChoice.h"
#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/ProgressBar.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Segments.h"
#include "app/kit/Theme.h"
#include "export/ExportNames.h"
#include "export/ExportReviewPolicy.h"
#include "language/Plural.h"
#include "pipeline/ExportOptions.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int panelWidth = 384;
constexpr int inset = 24;
constexpr int headerHeight = 56;

QString sizeText(const PhotoItem &photo, const ExportOptions &options, bool &tooLarge)
{
    try {
        const QSize canvas = outputCanvas(photo, options);
        return u"%1 × %2"_s.arg(canvas.width()).arg(canvas.height());
    } catch (const PipelineFailure &) {
        tooLarge = true;
        return localized({"过大", "Too large", "Trop grand"});
    }
}

} // namespace

ExportPanel::ExportPanel(const EditorContext &context, const FileChooser &chooser, PhotoLibrary &library)
    : m_context(context),
      m_chooser(chooser),
      m_folder(context.pipeline),
      m_library(context.pipeline, library),
      m_choices(ExportChoices::stored(context.preferences))
{
    setFixedWidth(panelWidth);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(1, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    m_options = new QWidget;
    auto *options = new QVBoxLayout(m_options);
    options->setContentsMargins(inset, 0, inset, 16);
    options->setSpacing(0);
    addOptions(options);
    auto *area = new ScrollArea;
    area->hold(m_options);
    column->addWidget(area, 1);
    column->addWidget(makeFooter());
    connect(&m_folder, &FolderExport::changed, this, &ExportPanel::folderChanged);
    connect(&m_library, &LibraryExport::changed, this, &ExportPanel::libraryChanged);
    connect(&m_library, &LibraryExport::succeeded, this, [this] {
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

void ExportPanel::addOptions(QVBoxLayout *column)
{
    const auto group = [column](Phrase title, QWidget *control, Label *note = nullptr) {
        auto *row = new QHBoxLayout;
        row->addWidget(new Label(Type::Label, std::move(title)), 1);
        if (note) {
            note->setWordWrap(false);
            row->addWidget(note);
        }
        column->addLayout(row);
        column->addSpacing(8);
        column->addWidget(control);
        column->addSpacing(24);
    };
    m_destination =
        new Segments({said({"文件夹", "Folder", "Dossier"}), said({"图片", "Pictures", "Images"})});
    m_destination->setName(said({"位置", "Destination", "Destination"}));
    group(said({"位置", "Destination", "Destination"}), m_destination);
    m_which = new Segments({[this] {
                                return counted(m_context.model.photos().size(),
                                               {"全部 %1 张", "The photo", "La photo"},
                                               {"全部 %1 张", "All %1 photos", "Les %1 photos"});
                            },
                            said({"仅这一张", "This photo", "Cette photo"})});
    m_which->setName(said({"要导出的照片", "Photos to export", "Photos à exporter"}));
    group(said({"照片", "Photos", "Photos"}), m_which);
    m_size = new SizeChoice;
    m_size->setName([] { return ExportTexts::sizeGroup(); });
    group([] { return ExportTexts::sizeGroup(); }, m_size);
    m_format = new Segments({[] { return u"JPEG"_s; }, [] { return u"PNG"_s; }});
    m_format->setName([] { return ExportTexts::formatGroup(); });
    group([] { return ExportTexts::formatGroup(); }, m_format);
    std::vector<Phrase> limits;
    for (qsizetype i = 0; i < ExportTexts::limits().size(); ++i) {
        limits.emplace_back([i] { return ExportTexts::limits().at(i).label; });
    }
    m_limit = new Segments(std::move(limits));
    m_limit->setName([] { return ExportTexts::limitGroup(); });
    m_limitNote =
        new Label(Type::Label, said({"仅 JPEG", "JPEG only", "JPEG seulement"}), Label::Tone::Secondary);
    group([] { return ExportTexts::limitGroup(); }, m_limit, m_limitNote);
    column->addWidget(makeRule());
    auto *file = makeHint("image", [this] {
        const PhotoItem *photo = m_context.model.current();
        return photo ? ExportNames::fileName(photo->name, m_choices.png ? u"png"_s : u"jpg"_s, 0) : QString();
    });
    m_fileName = file->findChild<Label *>();
    column->addWidget(file);
    column->addSpacing(4);
    column->addWidget(makeHint("lock", [] { return ExportTexts::privacy(); }));
    column->addStretch();

    m_destination->setObjectName(u"destination"_s);
    m_which->setObjectName(u"which"_s);
    m_size->setObjectName(u"sizes"_s);
    m_format->setObjectName(u"format"_s);
    m_limit->setObjectName(u"limit"_s);
    connect(m_destination, &ItemView::chosen, this, [this](int index) {
        // The photo library's choices have no memory.
        const bool all = m_choices.all;
        m_choices = index == 1 ? ExportChoices::forSheet() : ExportChoices::stored(m_context.preferences);
        m_choices.all = all;
        refresh();
    });
    connect(m_which, &ItemView::chosen, this,
            [this](int index) { choose([index](ExportChoices &choices) { choices.all = index == 0; }); });
    connect(m_size, &ItemView::chosen, this, [this](int index) {
        choose([index](ExportChoices &choices) {
            choices.resolution = static_cast<int>(ExportTexts::sizes().at(index).value);
        });
    });
    connect(m_format, &ItemView::chosen, this,
            [this](int index) { choose([index](ExportChoices &choices) { choices.png = index == 1; }); });
    connect(m_limit, &ItemView::chosen, this, [this](int index) {
        choose([index](ExportChoices &choices) { choices.maxMB = ExportTexts::limits().at(index).value; });
    });
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
    m_problem = new ProblemCard(m_context);
    m_problem->hide();
    column->addWidget(m_problem);
    m_start = new Button(Button::Kind::Primary, [this] {
        return toLibrary() ? localized({"保存到“图片”", "Save to Pictures", "Enregistrer dans Images"})
                           : ExportTexts::startButton(m_choices.photos(m_context.model).size());
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
            m_destination->setCurrent(0);
            startInto(folder);
        });
    });
    connect(m_problem, &ProblemCard::stopAsked, this, [this] { run().stop(); });
    connect(m_problem, &ProblemCard::retryAsked, this, [this] { run().retry(); });
    connect(m_problem, &ProblemCard::skipAsked, this,
            [this](ExportRun::Skipping which) { run().skip(which); });
    return footer;
}

bool ExportPanel::toLibrary() const
{
    return m_destination->current() == 1;
}

bool ExportPanel::working() const
{
    return m_folder.working() || m_library.phase() == LibraryExport::Phase::Rendering ||
           m_library.phase() == LibraryExport::Phase::Saving;
}

QString ExportPanel::progress() const
{
    if (!working()) {
        return {};
    }
    const bool folder = m_folder.working();
    return u"%1 / %2"_s.arg(folder ? m_folder.progress() : m_library.progress())
        .arg(folder ? m_folder.total() : m_library.total());
}

void ExportPanel::open()
{
    if (!working()) {
        m_choices = ExportChoices::stored(m_context.preferences);
        m_destination->setCurrent(0);
    }
    refresh();
    if (problem()) {
        m_problem->focusDefault();
    } else {
        m_start->setFocus();
    }
}

void ExportPanel::choose(const std::function<void(ExportChoices &)> &change)
{
    change(m_choices);
    if (!toLibrary()) {
        m_choices.store(m_context.preferences);
    }
    refresh();
}

void ExportPanel::refresh()
{
    m_destination->setCurrent(std::max(m_destination->current(), 0));
    m_which->setCurrent(m_choices.all ? 0 : 1);
    m_which->update();
    m_format->setCurrent(m_choices.png ? 1 : 0);
    QList<SizeChoice::Row> rows;
    const PhotoItem *photo = m_context.model.current();
    const QList<ExportTexts::Choice> sizes = ExportTexts::sizes();
    for (qsizetype i = 0; i < sizes.size(); ++i) {
        ExportChoices choice = m_choices;
        choice.resolution = static_cast<int>(sizes.at(i).value);
        bool tooLarge = false;
        const QString pixels = photo ? sizeText(*photo, choice.options(), tooLarge) : QString();
        rows.append({sizes.at(i).label, pixels, tooLarge});
        if (choice.resolution == m_choices.resolution) {
            m_size->setCurrent(static_cast<int>(i));
        }
    }
    m_size->setRows(rows);
    const QList<ExportTexts::Choice> limits = ExportTexts::limits();
    for (qsizetype i = 0; i < limits.size(); ++i) {
        if (limits.at(i).value == m_choices.maxMB) {
            m_limit->setCurrent(static_cast<int>(i));
        }
    }
    m_fileName->refresh();
    m_start->refresh();
    showRun();
}

void ExportPanel::showRun()
{
    const bool busy = working();
    if (!busy) {
        m_context.model.keepFiles({});
    }
    for (QWidget *option : {static_cast<QWidget *>(m_destination), static_cast<QWidget *>(m_which),
                            static_cast<QWidget *>(m_size), static_cast<QWidget *>(m_format)}) {
        option->setEnabled(!busy);
    }
    m_limit->setEnabled(!busy && !m_choices.png);
    // The keyboard goes with the button that takes the other's place.
    // Of the window, which a dialog that closes has not given the keyboard back to yet.
    const QWidget *keyboard = window()->focusWidget();
    const bool held = keyboard == m_start || keyboard == m_cancel;
    m_progressBox->setVisible(busy);
    m_start->setVisible(!busy);
    m_start->setEnabled(!busy && m_context.model.current());
    const bool folder = m_folder.working();
    const bool saving = m_library.phase() == LibraryExport::Phase::Saving;
    const int done = folder ? m_folder.progress() : m_library.progress();
    const int total = folder ? m_folder.total() : m_library.total();
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
    m_photo->setPhrase(
        [name = run().current() ? run().current()->name : QString(), width = panelWidth / 2 - inset,
         label = m_photo] { return label->fontMetrics().elidedText(name, Qt::ElideMiddle, width); });
    showProblem();
    showError();
    Q_EMIT progressed();
}

void ExportPanel::showProblem()
{
    const std::optional<ExportProblem> &problem = run().problem();
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
    const QString error = Wording::local(toLibrary() ? m_library.error() : m_folder.error());
    const bool shown = !working() && !error.isEmpty();
    m_error->setVisible(shown);
    m_error->setTone((toLibrary() ? m_library.cancelled() : m_folder.cancelled()) ? Label::Tone::Secondary
                                                                                  : Label::Tone::Danger);
    m_error->setPhrase([text = QString(error)]() mutable { return text; });
    const std::optional<ExportProblem> &failure = run().failure();
    const QString detail = toLibrary() && m_library.denied() ? m_library.refusal()
                           : failure
                               ? failure->photo.name + localized({"：", ": ", "\u202f: "}) + failure->cause
                               : QString();
    m_errorDetail->setVisible(shown && !detail.isEmpty());
    m_errorDetail->setPhrase([detail] { return QString(detail); });
    m_otherFolder->setVisible(shown && toLibrary() && m_library.denied());
}

void ExportPanel::start()
{
    const QList<PhotoItem> photos = m_choices.photos(m_context.model);
    if (photos.isEmpty() || working()) {
        return;
    }
    if (toLibrary()) {
        keepFiles(photos);
        m_intoLibrary = true;
        m_library.start(photos, m_choices.options());
        return;
    }
    m_chooser.folder(window(), [this](const QString &folder) { startInto(folder); });
}

void ExportPanel::startInto(const QString &folder)
{
    const QList<PhotoItem> photos = m_choices.photos(m_context.model);
    if (!working() && !photos.isEmpty()) {
        keepFiles(photos);
        m_intoLibrary = false;
        m_folder.start(photos, m_choices.options(), folder);
    }
}

void ExportPanel::keepFiles(const QList<PhotoItem> &photos)
{
    std::set<QString> files;
    for (const PhotoItem &photo : photos) {
        files.insert(photo.file);
        files.merge(photo.settings.referencedFiles());
    }
    m_context.model.keepFiles(files);
}

void ExportPanel::cancel()
{
    m_cancel->setEnabled(false);
    if (m_folder.working()) {
        m_folder.cancel();
    } else {
        m_library.cancel();
    }
}

void ExportPanel::folderChanged()
{
    m_cancel->setEnabled(true);
    showRun();
    const std::optional<ExportResult> &result = m_folder.result();
    if (result && result->id != m_lastResult) {
        m_lastResult = result->id;
        Q_EMIT exportedToFolder();
    }
    tellError(m_folder.working() ? QString() : m_folder.error());
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

void ExportPanel::libraryChanged()
{
    m_cancel->setEnabled(true);
    showRun();
    tellError(m_library.phase() == LibraryExport::Phase::Idle ? m_library.error() : QString());
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
