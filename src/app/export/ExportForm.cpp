#include "app/export/ExportForm.h"

#include <utility>

#include <QBoxLayout>

#include "app/export/NameField.h"
#include "app/export/SizeChoice.h"
#include "app/inspector/Section.h"
#include "app/kit/Label.h"
#include "app/kit/Segments.h"
#include "language/Plural.h"
#include "pipeline/CameraTexts.h"
#include "pipeline/ExportOptions.h"
#include "pipeline/PipelineError.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int inset = 24;

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

ExportForm::ExportForm(const EditorModel &model, Preferences &preferences, ImagePipeline *pipeline)
    : m_model(model),
      m_preferences(preferences),
      m_choices(ExportChoices::stored(preferences)),
      m_pipeline(pipeline)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(inset, 0, inset, 16);
    column->setSpacing(0);
    m_destination =
        new Segments({said({"文件夹", "Folder", "Dossier"}), said({"图片", "Pictures", "Images"})});
    m_destination->setName(said({"位置", "Destination", "Destination"}));
    addRow(column, said({"位置", "Destination", "Destination"}), m_destination);
    m_which =
        new Segments({[this] {
                          return counted(m_model.photos().size(), {"全部 %1 张", "The photo", "La photo"},
                                         {"全部 %1 张", "All %1 photos", "Les %1 photos"});
                      },
                      said({"仅这一张", "This photo", "Cette photo"})});
    m_which->setName(said({"要导出的照片", "Photos to export", "Photos à exporter"}));
    addRow(column, said({"照片", "Photos", "Photos"}), m_which);
    m_size = new SizeChoice;
    m_size->setName([] { return ExportTexts::sizeGroup(); });
    addRow(
        column, [] { return ExportTexts::sizeGroup(); }, m_size);
    m_format = new Segments({[] { return u"JPEG"_s; }, [] { return u"PNG"_s; }});
    m_format->setName([] { return ExportTexts::formatGroup(); });
    addRow(
        column, [] { return ExportTexts::formatGroup(); }, m_format);
    std::vector<Phrase> limits;
    for (qsizetype i = 0; i < ExportTexts::limits().size(); ++i) {
        limits.emplace_back([i] { return ExportTexts::limits().at(i).label; });
    }
    m_limit = new Segments(std::move(limits));
    m_limit->setName([] { return ExportTexts::limitGroup(); });
    m_limitNote =
        new Label(Type::Label, said({"仅 JPEG", "JPEG only", "JPEG seulement"}), Label::Tone::Secondary);
    addRow(
        column, [] { return ExportTexts::limitGroup(); }, m_limit, m_limitNote);
    column->addWidget(makeRule());
    m_name = new NameField;
    addRow(column, said({"文件名", "File name", "Nom de fichier"}), m_name);
    column->addWidget(makeHint("lock", [] { return ExportTexts::privacy(); }));
    column->addStretch();
    connectControls();
    connectName();
    refresh();
}

void ExportForm::addRow(QVBoxLayout *column, Phrase title, QWidget *control, Label *note) const
{
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
}

void ExportForm::connectControls()
{
    m_destination->setObjectName(u"destination"_s);
    m_which->setObjectName(u"which"_s);
    m_size->setObjectName(u"sizes"_s);
    m_format->setObjectName(u"format"_s);
    m_limit->setObjectName(u"limit"_s);
    connect(m_destination, &ItemView::chosen, this, [this](int index) {
        // The photo library's choices have no memory.
        const bool all = m_choices.all;
        m_choices = index == 1 ? ExportChoices::forSheet() : ExportChoices::stored(m_preferences);
        m_choices.all = all;
        refresh();
        Q_EMIT changed();
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

void ExportForm::connectName()
{
    connect(m_name, &NameField::typed, this, [this](const QString &pattern) {
        choose([&](ExportChoices &choices) { choices.name = pattern; });
    });
}

bool ExportForm::toLibrary() const
{
    return m_destination->current() == 1;
}

void ExportForm::chooseFolder()
{
    m_destination->setCurrent(0);
}

void ExportForm::reset()
{
    m_choices = ExportChoices::stored(m_preferences);
    chooseFolder();
    refresh();
}

void ExportForm::choose(const std::function<void(ExportChoices &)> &change)
{
    change(m_choices);
    if (!toLibrary()) {
        m_choices.store(m_preferences);
    }
    refresh();
    Q_EMIT changed();
}

void ExportForm::refresh()
{
    m_destination->setCurrent(std::max(m_destination->current(), 0));
    m_which->setCurrent(m_choices.all ? 0 : 1);
    m_which->update();
    m_format->setCurrent(m_choices.png ? 1 : 0);
    showSizes();
    const QList<ExportTexts::Choice> limits = ExportTexts::limits();
    for (qsizetype i = 0; i < limits.size(); ++i) {
        if (limits.at(i).value == m_choices.maxMB) {
            m_limit->setCurrent(static_cast<int>(i));
        }
    }
    showName();
    setBusy(m_busy);
}

void ExportForm::showSizes()
{
    QList<SizeChoice::Row> rows;
    const PhotoItem *photo = m_model.current();
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
}

void ExportForm::showName()
{
    m_name->display(m_choices.name);
    const PhotoItem *photo = m_model.current();
    FieldValues values;
    if (photo && m_pipeline && photo->file != m_capturedFile) {
        m_capturedFile = photo->file;
        m_captured = {};
        whenFinished<CaptureMetadata>(m_pipeline->captured(photo->file), this,
                                      [this, file = photo->file](const QFuture<CaptureMetadata> &read) {
                                          try {
                                              const CaptureMetadata captured = read.result();
                                              if (file == m_capturedFile) {
                                                  m_captured = captured;
                                                  showName();
                                              }
                                          } catch (const QException &) {
                                              return; // the example goes without
                                          }
                                      });
    }
    setCameraFields(values, m_captured);
    if (photo) {
        const auto index =
            std::ranges::find(m_model.photos(), photo->id, &PhotoItem::id) - m_model.photos().begin();
        values.name = photo->name;
        values.number = m_choices.all ? static_cast<int>(index) + 1 : 1;
        values.count = m_choices.all ? static_cast<int>(m_model.photos().size()) : 1;
        values.templateId = photo->settings.templateID.value_or(QString());
        values.size = m_choices.sizeName();
        try {
            const QSize canvas = outputCanvas(*photo, m_choices.options());
            values.width = canvas.width();
            values.height = canvas.height();
        } catch (const PipelineFailure &) {
            values.width = 0; // its row says that it is too large
        }
    }
    m_name->setExample(values, m_choices.png ? u"png"_s : u"jpg"_s);
}

void ExportForm::setBusy(bool busy)
{
    m_name->setEnabled(!busy && !toLibrary());
    m_busy = busy;
    for (QWidget *option : std::initializer_list<QWidget *>{m_destination, m_which, m_size, m_format}) {
        option->setEnabled(!busy);
    }
    m_limit->setEnabled(!busy && !m_choices.png);
}

} // namespace tarnovel::app
