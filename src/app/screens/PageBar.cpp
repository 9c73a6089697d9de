#include "app/screens/PageBar.h"

#include <utility>

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

PageBar::PageBar(Phrase title)
    : m_title(std::move(title)),
      m_row(new QHBoxLayout(this)),
      m_close(new Button(Button::Kind::Ghost, said({"关闭", "Close", "Fermer"}), "close"))
{
    setFixedHeight(56);
    m_row->setContentsMargins(16, 0, 16, 0);
    m_row->setSpacing(8);
    m_row->addWidget(m_close);
    m_row->addStretch();
    connect(m_close, &QPushButton::clicked, this, &PageBar::closeAsked);
}

void PageBar::addAction(QWidget *button)
{
    m_row->addWidget(button);
}

QWidget *PageBar::closeButton() const
{
    return m_close;
}

void PageBar::setClosePhrase(Phrase phrase)
{
    m_close->setIconName(nullptr);
    m_close->setPhrase(std::move(phrase));
}

void PageBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        update();
    }
    QWidget::changeEvent(event);
}

void PageBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(0, height() - 1), QPointF(width(), height() - 1));
    painter.setFont(typeFont(Type::Heading));
    painter.setPen(theme().ink);
    painter.drawText(rect(), Qt::AlignCenter, m_title());
}

} // namespace tarnovel::app
