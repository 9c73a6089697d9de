#include "app/inspector/EmptyState.h"

#include <utility>

#include <QBoxLayout>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int padding = 24;
constexpr int tile = 48;
constexpr int iconSize = 20;

class IconTile : public QWidget {
public:
    explicit IconTile(const char *icon) : m_icon(icon) { setFixedSize(tile, tile); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 12, theme().selection);
        constexpr double at = (tile - iconSize) / 2.0;
        Icons::draw(painter, m_icon, {at, at}, iconSize, theme().accent);
    }

private:
    const char *m_icon;
};

} // namespace

EmptyState::EmptyState(const char *icon, Phrase heading, Phrase text, Button *button)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(0);
    column->addWidget(new IconTile(icon), 0, Qt::AlignHCenter);
    column->addSpacing(12);
    auto *title = new Label(Type::BodyStrong, std::move(heading));
    auto *sentence = new Label(Type::Label, std::move(text), Label::Tone::Secondary);
    QFont font = typeFont(Type::Label);
    font.setWeight(QFont::Normal);
    sentence->setFont(font);
    for (Label *label : {title, sentence}) {
        label->setAlignment(Qt::AlignHCenter);
        column->addWidget(label);
        column->addSpacing(label == title ? 4 : 16);
    }
    column->addWidget(button, 0, Qt::AlignHCenter);
}

void EmptyState::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(theme().controlLine, 1);
    pen.setDashPattern({4, 3});
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 12, 12);
}

} // namespace tarnovel::app
