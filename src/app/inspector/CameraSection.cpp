#include "app/inspector/CameraSection.h"

#include <QBoxLayout>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/Switch.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr std::array<Text, 4> titles = {{{"品牌", "Brand", "Marque"},
                                         {"机型", "Model", "Modèle"},
                                         {"参数", "Exposure", "Exposition"},
                                         {"日期", "Date", "Date"}}};

class Notice : public QWidget {
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 8, theme().selection);
    }
};

} // namespace

CameraSection::CameraSection(const EditingContext &context) : Section(context)
{
    for (size_t i = 0; i < m_rows.size(); ++i) {
        addRow(m_rows.at(i), titles.at(i));
    }
    m_notice = new Notice;
    auto *box = new QVBoxLayout(m_notice);
    box->setContentsMargins(12, 12, 12, 12);
    box->setSpacing(10);
    box->addWidget(makeHint("calendar", [] { return CaptureDateEntry::absentNotice(); }));
    m_enter =
        new Button(Button::Kind::Primary, said({"填写拍摄日期", "Enter capture date", "Saisir la date"}));
    m_enter->setHeight(28);
    box->addWidget(m_enter);
    column()->addWidget(m_notice);
    m_enter->setObjectName(u"enterDate"_s);
    connect(m_enter, &QPushButton::clicked, this, &CameraSection::enterDate);
}

void CameraSection::addRow(Row &row, const Text &title)
{
    row.visible = new Switch(said(title));
    row.text = new Field(said(title));
    row.text->setGivesKeyboardBack(true);
    column()->addWidget(row.visible);
    column()->addWidget(row.text);
    column()->addSpacing(12);
    const QString id = QString::fromLatin1(row.id);
    row.visible->setObjectName(id + u"Shown"_s);
    row.text->setObjectName(id + u"Text"_s);
    connect(row.visible, &Switch::toggledByUser, this, [this, id](bool on) {
        edits().step(inLayer(id, [on](TextLayer &layer) { layer.visible = on; }));
        model().scheduleSave(SaveScheduler::Moment::AtOnce);
    });
    connect(row.text, &QLineEdit::textEdited, this,
            [this, id](const QString &text) { edits().adjust(u"text "_s + id, inLayer(id, typed(text))); });
    connect(row.text, &QLineEdit::editingFinished, this, [this, field = row.text] {
        field->setModified(false);
        edits().endAdjusting();
    });
}

void CameraSection::display(const PhotoItem &photo)
{
    for (const Row &row : m_rows) {
        const TextLayer *layer = photo.settings.layer(QString::fromLatin1(row.id));
        row.visible->setEnabled(layer);
        row.text->setEnabled(layer);
        if (layer) {
            row.visible->show(layer->visible);
            row.text->display(layer->text);
        }
    }
    m_rows.back().text->setPlaceholder(said({"无日期", "No date", "Aucune date"}));
    const TextLayer *date = photo.settings.layer(u"date"_s);
    m_notice->setVisible(date && date->text.trimmed().isEmpty());
}

void CameraSection::enterDate()
{
    askText(m_enter,
            {.title = said({"填写拍摄日期", "Enter capture date", "Saisir la date"}),
             .text = [] { return CaptureDateEntry::absentNotice(); },
             .fieldName = said({"拍摄日期", "Capture date", "Date de prise de vue"}),
             .confirm = said({"设定日期", "Set date", "Définir la date"}),
             .icon = "calendar"},
            [this](const QString &text) {
                return CaptureDateEntry::enter(model(), text) ? QString() : CaptureDateEntry::invalidNotice();
            });
}

void CameraSection::reset()
{
    edits().step([](FrameSettings &settings) {
        for (const char *id : {"brand", "model", "exif", "date"}) {
            if (TextLayer *layer = settings.layer(QString::fromLatin1(id))) {
                layer->visible = false;
            }
        }
    });
}

} // namespace tarnovel::app
