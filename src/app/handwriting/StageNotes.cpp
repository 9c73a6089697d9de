#include "app/handwriting/StageNotes.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"
#include "handwriting/HandwritingTool.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int iconSize = 16;
constexpr int zoomWidth = 64;
/// Differences below this do not show in the number.
constexpr double sameZoom = 0.005;

class InfoIcon : public QWidget {
public:
    InfoIcon() { setFixedSize(iconSize, iconSize); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Icons::draw(painter, "info", {}, iconSize, theme().ink);
    }
};

} // namespace

WritingGuide::WritingGuide(QWidget *parent) : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    auto *title = new QHBoxLayout;
    title->setSpacing(8);
    title->addWidget(new InfoIcon);
    title->addWidget(
        new Label(Type::BodyStrong, said({"在画框上书写", "Writing on the frame", "Écrire sur le cadre"})),
        1);
    column->addLayout(title);
    for (const Phrase &phrase :
         {Phrase([] { return handwritingGuide(); }),
          said({"使用鼠标：Ctrl + 滚轮缩放，按住空格键拖动页面。",
                "With a mouse, Ctrl + wheel zooms, and holding Space moves the page.",
                "À la souris, Ctrl + molette agrandit et la touche Espace maintenue déplace la page."})}) {
        auto *label = new Label(Type::Label, phrase, Label::Tone::Secondary);
        QFont font = label->font();
        font.setWeight(QFont::Normal);
        label->setFont(font);
        column->addWidget(label);
    }
}

ZoomControl::ZoomControl(QWidget *parent)
    : QWidget(parent),
      m_smaller(new Button(Button::Kind::Ghost, said({"缩小", "Zoom out", "Réduire"}), "minus",
                           Button::Face::IconOnly)),
      m_zoom(new Button(Button::Kind::Ghost, {})),
      m_larger(new Button(Button::Kind::Ghost, said({"放大", "Zoom in", "Agrandir"}), "plus",
                          Button::Face::IconOnly))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(4, 4, 4, 4);
    row->setSpacing(0);
    m_zoom->setObjectName(u"wholePage"_s);
    m_zoom->setFixedWidth(zoomWidth);
    m_zoom->setHint([] {
        return localized({"显示整页", "Show the whole page", "Afficher toute la page"}) + u"  Ctrl+0"_s;
    });
    m_smaller->setKeyHint(u"−"_s);
    m_larger->setKeyHint(u"+"_s);
    for (Button *button : {m_smaller, m_zoom, m_larger}) {
        button->setFocusPolicy(Qt::TabFocus);
        row->addWidget(button);
    }
    connect(m_smaller, &QPushButton::clicked, this, &ZoomControl::smallerAsked);
    connect(m_zoom, &QPushButton::clicked, this, &ZoomControl::fitAsked);
    connect(m_larger, &QPushButton::clicked, this, &ZoomControl::largerAsked);
    setZoom(1, 2);
}

void ZoomControl::setZoom(double zoom, double most)
{
    m_zoom->setPhrase(
        [percent = qRound(zoom * 100)] { return asWritten(QString::number(percent) + u" %"_s); });
    m_smaller->setEnabled(zoom > 1 + sameZoom);
    m_larger->setEnabled(zoom < most - sameZoom);
}

void ZoomControl::paintEvent(QPaintEvent *)
{
    // Readable where a zoomed page lies under it, not to be seen where none does.
    QPainter painter(this);
    Paint::rounded(painter, rect(), 8, theme().canvas);
}

} // namespace tarnovel::app
