#include "app/collage/CollagePanel.h"

#include <QBoxLayout>
#include <QPainter>
#include <QStackedWidget>

#include "app/collage/CellsPage.h"
#include "app/collage/FilmEdgePage.h"
#include "app/collage/PageControls.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Segments.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int panelWidth = 304;
constexpr int inset = 20;

std::vector<Phrase> tabNames(bool film)
{
    std::vector<Phrase> names{said({"格子", "Cells", "Cases"}), said({"页面", "Page", "Page"})};
    if (film) {
        names.push_back(said({"胶片边", "Film edge", "Bord du film"}));
    }
    return names;
}

} // namespace

CollagePanel::CollagePanel(EditorState &state, CollageStudio &studio)
    : m_studio(studio), m_tabs(new Segments(tabNames(false))), m_pages(new QStackedWidget)
{
    setFixedWidth(panelWidth);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(1, 16, 0, 0);
    column->setSpacing(12);
    auto *tabs = new QHBoxLayout;
    tabs->setContentsMargins(inset - 1, 0, inset, 0);
    m_tabs->setName(said({"设置", "Settings", "Réglages"}));
    m_tabs->setObjectName(u"collageTabs"_s);
    tabs->addWidget(m_tabs);
    column->addLayout(tabs);
    const auto add = [this](QWidget *page) {
        page->layout()->setContentsMargins(inset - 1, 8, inset, 16);
        auto *scroll = new ScrollArea;
        scroll->setWidget(page);
        m_pages->addWidget(scroll);
    };
    add(new CellsPage(studio));
    add(new PageControls(state, studio));
    add(new FilmEdgePage(studio));
    column->addWidget(m_pages, 1);
    m_tabs->setCurrent(0);
    connect(m_tabs, &ItemView::chosen, m_pages, &QStackedWidget::setCurrentIndex);
    connect(&studio, &CollageStudio::changed, this, [this](CollageStudio::Changes changes) {
        if (changes & (CollageStudio::DesignChanged | CollageStudio::PhaseChanged)) {
            showState();
        }
    });
    showState();
}

void CollagePanel::showTab(Tab tab)
{
    const int index = tab == Tab::FilmEdge && !m_film ? 0 : static_cast<int>(tab);
    m_tabs->setCurrent(index);
    m_pages->setCurrentIndex(index);
}

void CollagePanel::showState()
{
    m_pages->setEnabled(!m_studio.saving());
    const bool film = m_studio.design().preset.film;
    if (film == m_film) {
        return;
    }
    m_film = film;
    const int shown = m_tabs->current();
    m_tabs->setNames(tabNames(film));
    showTab(!film && shown == static_cast<int>(Tab::FilmEdge) ? Tab::Cells : static_cast<Tab>(shown));
}

void CollagePanel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().surface);
    Paint::hairline(painter, QPointF(0, 0), QPointF(0, height()));
}

} // namespace tarnovel::app
