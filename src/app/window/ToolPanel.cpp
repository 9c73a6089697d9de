#include "app/window/ToolPanel.h"

#include <QBoxLayout>
#include <QPainter>
#include <QStackedWidget>

#include "app/inspector/BackgroundSection.h"
#include "app/inspector/BorderSection.h"
#include "app/inspector/CameraSection.h"
#include "app/inspector/CanvasSection.h"
#include "app/inspector/FilmSection.h"
#include "app/inspector/LogoSection.h"
#include "app/inspector/PlacementSection.h"
#include "app/inspector/SignatureSection.h"
#include "app/inspector/StylesSection.h"
#include "app/inspector/TemplatesSection.h"
#include "app/inspector/TextSection.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int panelWidth = 304;
constexpr int headerHeight = 56;
constexpr int footerHeight = 64;
constexpr int inset = 20;

} // namespace

ToolPanel::ToolPanel(const EditorContext &context)
    : m_context(context),
      m_title(new Label(Type::Heading, {})),
      m_reset(new Button(Button::Kind::Ghost, said({"还原", "Reset", "Réinitialiser"}), "reset",
                         Button::Face::IconOnly)),
      m_pages(new QStackedWidget),
      m_applyToAll(new Button(Button::Kind::Secondary,
                              said({"应用到全部", "Apply to all", "Appliquer à tout"}), "manage")),
      m_saveStyle(new Button(Button::Kind::Secondary,
                             said({"保存我的风格", "Save my style", "Enregistrer mon style"}), "styles",
                             Button::Face::IconOnly))
{
    setFixedWidth(panelWidth);
    m_reset->setObjectName(u"reset"_s);
    m_applyToAll->setObjectName(u"applyToAll"_s);
    m_saveStyle->setObjectName(u"saveStyle"_s);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(1, 0, 0, 0);
    column->setSpacing(0);
    auto *header = new QHBoxLayout;
    header->setContentsMargins(inset, 0, inset - 6, 0);
    header->addWidget(m_title, 1);
    header->addWidget(m_reset);
    auto *top = new QWidget;
    top->setFixedHeight(headerHeight);
    top->setLayout(header);
    column->addWidget(top);
    column->addWidget(m_pages, 1);
    auto *footer = new QHBoxLayout;
    footer->setContentsMargins(inset, 0, inset, 0);
    footer->setSpacing(8);
    m_applyToAll->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_applyToAll->setHint([] { return u"Ctrl+Return"_s; });
    m_saveStyle->setKeyHint(u"Ctrl+S"_s);
    footer->addWidget(m_applyToAll, 1);
    footer->addWidget(m_saveStyle);
    auto *bottom = new QWidget;
    bottom->setFixedHeight(footerHeight);
    bottom->setLayout(footer);
    column->addWidget(bottom);
    connect(m_reset, &QPushButton::clicked, this, [this] { section()->reset(); });
    connect(m_applyToAll, &QPushButton::clicked, &context.state, &EditorState::applyToAllAsked);
    connect(m_saveStyle, &QPushButton::clicked, &context.state, &EditorState::saveStyleAsked);
    connect(&context.state, &EditorState::toolChanged, this, &ToolPanel::showTool);
    showTool();
}

QWidget *ToolPanel::saveStyleButton() const
{
    return m_saveStyle;
}

Section *ToolPanel::make(Tool tool) const
{
    switch (tool) {
    case Tool::Templates:
        return new TemplatesSection(m_context.editing(), m_context.thumbnails);
    case Tool::Styles:
        return new StylesSection(m_context.editing(), m_context.preferences, m_context.thumbnails);
    case Tool::Canvas:
        return new CanvasSection(m_context.editing());
    case Tool::Background:
        return new BackgroundSection(m_context.editing());
    case Tool::Placement:
        return new PlacementSection(m_context.editing());
    case Tool::Border:
        return new BorderSection(m_context.editing());
    case Tool::Film:
        return new FilmSection(m_context.editing());
    case Tool::Text:
        return new TextSection(m_context.editing());
    case Tool::Logo:
        return new LogoSection(m_context.editing());
    case Tool::Signature:
        return new SignatureSection(m_context.editing());
    case Tool::Camera:
        return new CameraSection(m_context.editing());
    }
    return nullptr;
}

Section *ToolPanel::section()
{
    const Tool tool = m_context.state.tool();
    const auto index = static_cast<size_t>(tool);
    Section *&made = m_sections.at(index);
    if (!made) {
        made = make(tool);
        QList<QWidget *> stops;
        for (QWidget *next = made->nextInFocusChain(); next != made; next = next->nextInFocusChain()) {
            stops.append(next);
        }
        m_areas.at(index) = new ScrollArea;
        m_areas.at(index)->hold(made);
        m_pages->addWidget(m_areas.at(index));
        // From the body one comes to the footer, whichever was made first.
        QWidget *before = m_reset;
        for (QWidget *stop : stops) {
            setTabOrder(before, stop);
            before = stop;
        }
        setTabOrder(before, m_applyToAll);
        setTabOrder(m_applyToAll, m_saveStyle);
    }
    return made;
}

void ToolPanel::showTool()
{
    const Section *shown = section();
    const auto index = static_cast<size_t>(m_context.state.tool());
    m_pages->setCurrentWidget(m_areas.at(index));
    m_title->setPhrase(said(toolRows.at(index).title));
    m_reset->setVisible(shown->canReset());
}

void ToolPanel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().surface);
    Paint::hairline(painter, QPointF(0, 0), QPointF(0, height()));
    Paint::hairline(painter, QPointF(0, height() - footerHeight), QPointF(width(), height() - footerHeight));
}

} // namespace tarnovel::app
