#include "app/inspector/FilmSection.h"

#include <QBoxLayout>

#include "app/inspector/EmptyState.h"
#include "app/inspector/StockPicker.h"
#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/Segments.h"
#include "app/kit/Stepper.h"
#include "app/kit/Switch.h"
#include "film/FilmStockCatalog.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

QVBoxLayout *columnIn(QWidget *box)
{
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    return column;
}

/// What is printed when nothing is typed.
Phrase automatic(const QString &text)
{
    return [text] {
        return localized({"自动", "Automatic", "Automatique"}) + (text.isEmpty() ? text : u" · "_s + text);
    };
}

} // namespace

FilmSection::FilmSection(const EditingContext &context) : Section(context)
{
    auto *use = new Button(Button::Kind::Secondary,
                           said({"使用胶片边框", "Use film frame", "Utiliser le cadre film"}), "film");
    m_other = new EmptyState(
        "film", said({"仅用于胶片边框", "Only with the film frame", "Seulement avec le cadre film"}),
        said({"齿孔、片基和片号属于胶片边框。", "Perforations, base and numbers belong to the film frame.",
              "Perforations, base et numéros vont avec le cadre film."}),
        use);
    column()->addWidget(m_other);
    use->setObjectName(u"useFilm"_s);
    connect(use, &QPushButton::clicked, this, [this] {
        edits().step([](FrameSettings &settings) {
            settings.style = FrameStyle::film;
            settings.film = settings.film.value_or(FilmOptions());
        });
    });

    m_film = new QWidget;
    QVBoxLayout *film = columnIn(m_film);
    film->addWidget(new Label(Type::Label, said({"画幅", "Format", "Format"})));
    film->addSpacing(8);
    m_format = new Segments({[] { return u"35 mm"_s; }, [] { return u"645"_s; }, [] { return u"6×6"_s; },
                             [] { return u"6×7"_s; }, [] { return u"6×9"_s; }});
    m_format->setName(said({"画幅", "Format", "Format"}));
    film->addWidget(m_format);
    film->addSpacing(12);
    film->addWidget(makeHint(
        "info", said({"照片按画幅居中裁切，原图不变。",
                      "Photo is center-cropped to the film format; your original is kept.",
                      "La photo est recadrée au centre selon le format ; l’original est conservé."})));
    film->addWidget(makeRule());
    film->addWidget(new Label(Type::Label, said({"胶卷", "Film stock", "Pellicule"})));
    film->addSpacing(8);
    m_stocks = new StockPicker;
    film->addWidget(m_stocks);
    film->addWidget(makeRule());
    addEdges(film);
    column()->addWidget(m_film);
    m_format->setObjectName(u"format"_s);
    m_stocks->setObjectName(u"stocks"_s);
    connect(m_format, &ItemView::chosen, this, [this](int index) {
        change(
            [index](FilmOptions &options) { options.format = filmFormats.at(static_cast<size_t>(index)); });
    });
    connect(m_stocks, &StockPicker::chosen, this, [this](const QString &stock) {
        change([stock](FilmOptions &options) { options.stock = stock; });
    });
}

void FilmSection::addEdges(QVBoxLayout *box)
{
    m_perforations = new Switch(said({"齿孔", "Perforations", "Perforations"}));
    m_light = new Switch(said({"浅色片基", "Light film base", "Base claire"}));
    m_numbers = new Switch(said({"片号", "Frame numbers", "Numéros de vue"}));
    m_number = new Stepper(said({"片号", "Frame number", "Numéro de vue"}), 1, 36);
    auto *number = new QHBoxLayout;
    number->setSpacing(12);
    number->addWidget(new Label(Type::Body, said({"起始片号", "Number", "Numéro"})), 1);
    number->addWidget(m_number);
    box->addWidget(m_perforations);
    box->addWidget(m_light);
    box->addWidget(m_numbers);
    box->addLayout(number);
    box->addWidget(makeRule());
    m_top = new Field(said({"边缘标记", "Edge marking", "Marquage du bord"}));
    m_bottom = new Field(said({"下缘", "Lower edge", "Bord inférieur"}));
    box->addWidget(new Label(Type::Label, said({"边缘标记", "Edge marking", "Marquage du bord"})));
    box->addSpacing(8);
    box->addWidget(m_top);
    box->addSpacing(12);
    box->addWidget(new Label(Type::Label, said({"下缘", "Lower edge", "Bord inférieur"})));
    box->addSpacing(8);
    box->addWidget(m_bottom);
    m_perforations->setObjectName(u"perforations"_s);
    m_light->setObjectName(u"light"_s);
    m_numbers->setObjectName(u"numbers"_s);
    m_number->setObjectName(u"number"_s);
    m_top->setObjectName(u"topLabel"_s);
    m_bottom->setObjectName(u"bottomLabel"_s);
    const auto toggles = [this](Switch *row, bool FilmOptions::*field) {
        connect(row, &Switch::toggledByUser, this,
                [this, field](bool on) { change([field, on](FilmOptions &film) { film.*field = on; }); });
    };
    toggles(m_perforations, &FilmOptions::perforations);
    toggles(m_light, &FilmOptions::light);
    toggles(m_numbers, &FilmOptions::showsNumber);
    connect(m_number, &Stepper::changed, this, [this](int value) {
        edits().adjust(u"filmNumber"_s, [value](FrameSettings &settings) { settings.film->number = value; });
    });
    m_top->setGivesKeyboardBack(true);
    m_bottom->setGivesKeyboardBack(true);
    const auto types = [this](Field *field, const QString &key, std::optional<QString> FilmOptions::*place) {
        connect(field, &QLineEdit::textEdited, this, [this, key, place](const QString &text) {
            edits().adjust(key, [text, place](FrameSettings &settings) {
                (*settings.film).*place = text.isEmpty() ? std::nullopt : std::optional(text);
            });
        });
        connect(field, &QLineEdit::editingFinished, this, [this] { edits().endAdjusting(); });
    };
    types(m_top, u"topLabel"_s, &FilmOptions::topLabel);
    types(m_bottom, u"bottomLabel"_s, &FilmOptions::bottomLabel);
}

void FilmSection::change(const std::function<void(FilmOptions &)> &change)
{
    edits().step([&change](FrameSettings &settings) {
        FilmOptions film = settings.film.value_or(FilmOptions());
        change(film);
        settings.film = film;
    });
}

void FilmSection::display(const PhotoItem &photo)
{
    const bool isFilm = photo.settings.style == FrameStyle::film;
    m_other->setVisible(!isFilm);
    m_film->setVisible(isFilm);
    if (!isFilm) {
        return;
    }
    const FilmOptions film = photo.settings.film.value_or(FilmOptions());
    const auto *format = std::find(filmFormats.begin(), filmFormats.end(), film.format);
    m_format->setCurrent(static_cast<int>(format - filmFormats.begin()));
    m_stocks->setStock(film.stock);
    m_perforations->setVisible(film.format == FilmFormat::mm35);
    m_perforations->show(film.perforations);
    m_light->show(film.light);
    m_numbers->show(film.showsNumber);
    m_number->setEnabled(film.showsNumber);
    m_number->setRange(1, framesPerRoll(film.format));
    m_number->setValue(printedFrameNumber(film.format, film.number));
    m_top->setPlaceholder(automatic(FilmStockCatalog::printableLabel(film.stock)));
    m_bottom->setPlaceholder(automatic({}));
    m_top->display(film.topLabel.value_or(QString()));
    m_bottom->display(film.bottomLabel.value_or(QString()));
}

void FilmSection::reset()
{
    edits().step([](FrameSettings &settings) {
        if (settings.style == FrameStyle::film) {
            settings.film = FilmOptions();
        }
    });
}

} // namespace tarnovel::app
