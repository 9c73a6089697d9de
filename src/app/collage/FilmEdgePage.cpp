#include "app/collage/FilmEdgePage.h"

#include <QBoxLayout>

#include "app/inspector/Section.h"
#include "app/inspector/StockPicker.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/Stepper.h"
#include "app/kit/Switch.h"
#include "collage/CollagePage.h"
#include "film/FilmStockCatalog.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

/// Three digits are what the stepper's field has room for.
constexpr int mostFirst = 999;

} // namespace

FilmEdgePage::FilmEdgePage(CollageStudio &studio)
    : m_studio(studio),
      m_stock(new StockPicker),
      m_text(new Field(said({"边缘文字", "Edge text", "Texte du bord"}))),
      m_numbers(new Switch(said({"片号", "Frame numbers", "Numéros de vue"}))),
      m_first(new Stepper(said({"起始片号", "First frame", "Première vue"}), 0, mostFirst))
{
    auto *column = new QVBoxLayout(this);
    column->setSpacing(0);
    column->setAlignment(Qt::AlignTop);
    column->addWidget(new Label(Type::Label, said({"胶卷", "Film stock", "Pellicule"})));
    column->addSpacing(8);
    m_stock->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    column->addWidget(m_stock);
    column->addSpacing(12);
    column->addWidget(new Label(Type::Label, said({"边缘文字", "Edge text", "Texte du bord"})));
    column->addSpacing(8);
    column->addWidget(m_text);
    column->addSpacing(4);
    column->addWidget(makeRule());
    column->addWidget(m_numbers);
    column->addSpacing(8);
    auto *first = new QHBoxLayout;
    first->setSpacing(12);
    first->addWidget(new Label(Type::Body, said({"起始片号", "First frame", "Première vue"})), 1);
    first->addWidget(m_first);
    column->addLayout(first);
    column->addSpacing(4);
    column->addWidget(makeRule());
    column->addWidget(makeHint(
        "info", said({"间距和背景随 35 毫米胶片而定。", "Spacing and background follow the 35 mm strip.",
                      "L’espacement et le fond suivent la bande 35 mm."})));
    m_text->setGivesKeyboardBack(true);
    m_stock->setObjectName(u"stock"_s);
    m_text->setObjectName(u"edgeText"_s);
    m_numbers->setObjectName(u"frameNumbers"_s);
    m_first->setObjectName(u"firstFrame"_s);
    connect(m_stock, &StockPicker::chosen, this,
            [this](const QString &stock) { change([&stock](FilmEdge &edge) { edge.stock = stock; }); });
    connect(m_text, &QLineEdit::textEdited, this,
            [this](const QString &text) { change([&text](FilmEdge &edge) { edge.topText = text; }); });
    connect(m_numbers, &Switch::toggledByUser, this,
            [this](bool on) { change([on](FilmEdge &edge) { edge.showsNumbers = on; }); });
    connect(m_first, &Stepper::changed, this,
            [this](int number) { change([number](FilmEdge &edge) { edge.startNumber = number; }); });
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & CollageStudio::DesignChanged) {
            showState();
        }
    });
    showState();
}

void FilmEdgePage::change(const std::function<void(FilmEdge &)> &edit)
{
    FilmEdge edge = m_studio.design().filmEdge;
    edit(edge);
    CollagePage(m_studio).setFilmEdge(edge);
}

void FilmEdgePage::showState()
{
    const FilmEdge &edge = m_studio.design().filmEdge;
    m_stock->setStock(edge.stock);
    const QString marking = FilmStockCatalog::printableLabel(edge.stock);
    m_text->setPlaceholder([marking] {
        return localized({"自动", "Automatic", "Automatique"}) +
               (marking.isEmpty() ? QString() : u" · "_s + marking);
    });
    m_text->display(edge.topText);
    m_numbers->show(edge.showsNumbers);
    m_first->setValue(edge.startNumber);
    m_first->setEnabled(edge.showsNumbers);
}

} // namespace tarnovel::app
