#include "app/handwriting/HandwritingTools.h"

#include <algorithm>

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "app/handwriting/InkColors.h"
#include "app/handwriting/SampleStroke.h"
#include "app/handwriting/ToolTiles.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Slider.h"
#include "app/kit/Theme.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int barHeight = 144;
/// Below this width the pens have no captions, and few colours show.
constexpr int roomyWidth = 1280;
constexpr int sideMargin = 40;
constexpr int tightSideMargin = 24;
/// The groups do not drift further apart than this.
constexpr int mostContent = 1440;
constexpr int titleHeight = 28;
constexpr int contentHeight = 64;
constexpr int penWidth = 76;
constexpr int effectWidth = 80;
constexpr int sliderWidth = 200;
/// And below this the slider is shorter, too.
constexpr int tightWidth = 1100;
constexpr int tightSliderWidth = 132;
constexpr double usualWidth = 6;
constexpr QSize iconSize(20, 20);
constexpr QSize waveSize(52, 20);
constexpr double waveWidth = 4;

class VerticalRule : public QWidget {
public:
    VerticalRule() { setFixedWidth(1); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::hairline(painter, {0, 0}, QPointF(0, height()));
    }
};

const char *iconOf(HandwritingTool tool)
{
    switch (tool) {
    case HandwritingTool::Fountain:
        return "fountain";
    case HandwritingTool::Pencil:
        return "pencil";
    case HandwritingTool::Marker:
        return "marker";
    case HandwritingTool::Eraser:
        return "eraser";
    case HandwritingTool::Signature:
        break;
    }
    return "signpen";
}

Ink inkOf(const QColor &color)
{
    // The ready colours come back exactly as they are.
    for (const InkSwatch &swatch : inkSwatches()) {
        if (CompositionRenderer::opaque(swatch.color).rgb() == color.rgb()) {
            return swatch.color;
        }
    }
    return {color.redF(), color.greenF(), color.blueF()};
}

void paintWave(QPainter &painter, const QRectF &box, HandwritingFinish finish)
{
    const Theme &look = theme();
    const QColor violet = packedColor(look.dark ? 0x9A8BD0 : 0x5B4C8C);
    const Ink ink = inkOf(finish == HandwritingFinish::glitter ? violet : look.ink);
    painter.drawImage(box.topLeft(),
                      strokeImage(waveStroke(InkPen::signature, ink, waveWidth, box.size()), {finish, ink},
                                  box.size().toSize(), painter.device()->devicePixelRatioF()));
}

Label *makeTitle(Phrase phrase)
{
    auto *label = new Label(Type::Label, std::move(phrase), Label::Tone::Secondary);
    label->setFixedHeight(titleHeight);
    label->setWordWrap(false);
    return label;
}

QVBoxLayout *makeColumn(QWidget *block)
{
    auto *column = new QVBoxLayout(block);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    return column;
}

} // namespace

HandwritingTools::HandwritingTools(EditorState &state, QWidget *parent)
    : QWidget(parent), m_row(new QHBoxLayout(this))
{
    setFixedHeight(barHeight);
    m_row->setSpacing(0);
    m_row->addWidget(makePens());
    for (QWidget *block : {makeColors(state), makeWidth(), makeEffects()}) {
        m_row->addStretch(1);
        m_row->addWidget(new VerticalRule);
        m_row->addStretch(1);
        m_row->addWidget(block);
    }
    name();
}

QWidget *HandwritingTools::makePens()
{
    auto *block = new QWidget;
    QVBoxLayout *column = makeColumn(block);
    std::vector<ToolTiles::Tile> tiles;
    tiles.reserve(handwritingTools.size());
    for (const HandwritingTool tool : handwritingTools) {
        const QString key = QString::number(tiles.size() + 1);
        tiles.push_back({[tool] { return handwritingToolTitle(tool); },
                         [tool](QPainter &painter, const QRectF &box, const QColor &color) {
                             Icons::draw(painter, iconOf(tool), box.topLeft(), iconSize.width(), color);
                         },
                         tool == HandwritingTool::Eraser ? key + u", E"_s : key});
    }
    m_pens = new ToolTiles(std::move(tiles), {penWidth, contentHeight}, iconSize);
    column->addWidget(makeTitle(said({"签名笔", "Signing pen", "Stylo de signature"})));
    column->addWidget(m_pens);
    column->addStretch();
    connect(m_pens, &ItemView::chosen, this,
            [this](int index) { Q_EMIT toolChosen(handwritingTools.at(static_cast<size_t>(index))); });
    return block;
}

QWidget *HandwritingTools::makeColors(EditorState &state)
{
    auto *block = new QWidget;
    QVBoxLayout *column = makeColumn(block);
    m_colorTitle = makeTitle({});
    m_colors = new InkColors(state);
    m_eraserHint = new Label(
        Type::Body, [] { return eraserHint(); }, Label::Tone::Secondary);
    m_eraserHint->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_eraserHint->hide();
    column->addWidget(m_colorTitle);
    column->addWidget(m_colors);
    column->addWidget(m_eraserHint);
    column->addStretch();
    connect(m_colors, &ColorDots::chosenColor, this,
            [this](const QColor &color) { Q_EMIT colorChosen(inkOf(color)); });
    connect(m_colors, &ColorDots::dragged, this,
            [this](const QColor &color) { Q_EMIT colorChosen(inkOf(color)); });
    // The eraser's hint takes the place of the colours without moving what stands beside them.
    block->setFixedWidth(m_colors->sizeHint().width());
    return block;
}

QWidget *HandwritingTools::makeWidth()
{
    auto *block = new QWidget;
    QVBoxLayout *column = makeColumn(block);
    m_width = new Slider(said({"粗细", "Width", "Épaisseur"}), {.low = HandwritingController::leastWidth,
                                                                .high = HandwritingController::mostWidth,
                                                                .step = 1,
                                                                .decimals = 0,
                                                                .usual = usualWidth});
    m_sample = new WidthSample;
    block->setFixedWidth(sliderWidth);
    column->addWidget(m_width);
    column->addWidget(m_sample);
    column->addStretch();
    connect(m_width, &Slider::changed, this, &HandwritingTools::widthChosen);
    return block;
}

QWidget *HandwritingTools::makeEffects()
{
    auto *block = new QWidget;
    QVBoxLayout *column = makeColumn(block);
    std::vector<ToolTiles::Tile> tiles;
    tiles.reserve(handwritingFinishes.size());
    for (const HandwritingFinish finish : handwritingFinishes) {
        tiles.push_back({[finish] { return handwritingFinishTitle(finish); },
                         [finish](QPainter &painter, const QRectF &box, const QColor &) {
                             paintWave(painter, box, finish);
                         }});
    }
    m_effects = new ToolTiles(std::move(tiles), {effectWidth, contentHeight}, waveSize);
    column->addWidget(makeTitle(said({"效果", "Effect", "Effet"})));
    column->addWidget(m_effects);
    column->addStretch();
    connect(m_effects, &ItemView::chosen, this,
            [this](int index) { Q_EMIT finishChosen(handwritingFinishes.at(static_cast<size_t>(index))); });
    return block;
}

void HandwritingTools::display(const HandwritingController &studio)
{
    const auto *tool = std::find(handwritingTools.begin(), handwritingTools.end(), studio.tool());
    const auto *finish = std::find(handwritingFinishes.begin(), handwritingFinishes.end(), studio.finish());
    m_pens->setCurrent(static_cast<int>(tool - handwritingTools.begin()));
    m_effects->setCurrent(static_cast<int>(finish - handwritingFinishes.begin()));
    m_colors->setColor(CompositionRenderer::opaque(studio.color()));
    m_width->setValue(studio.width());
    m_sample->display(studio.tool(), {studio.finish(), studio.color()}, studio.width());
    const bool erases = studio.tool() == HandwritingTool::Eraser;
    m_colors->setVisible(!erases);
    m_eraserHint->setVisible(erases);
    m_colorTitle->setPhrase(erases ? Phrase([] { return handwritingToolTitle(HandwritingTool::Eraser); })
                                   : said({"颜色", "Color", "Couleur"}));
    setEnabled(!studio.saving());
}

void HandwritingTools::name()
{
    m_pens->setAccessibleName(localized({"签名笔", "Signing pen", "Stylo de signature"}));
    m_colors->setAccessibleName(localized({"颜色", "Color", "Couleur"}));
    m_effects->setAccessibleName(localized({"效果", "Effect", "Effet"}));
}

void HandwritingTools::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().surface);
    Paint::hairline(painter, {0, 0}, QPointF(width(), 0));
}

void HandwritingTools::resizeEvent(QResizeEvent *event)
{
    const bool roomy = width() >= roomyWidth;
    const int side = std::max(roomy ? sideMargin : tightSideMargin, (width() - mostContent) / 2 + sideMargin);
    m_row->setContentsMargins(side, 20, side, 24);
    m_pens->setNarrow(!roomy);
    m_colors->setFew(!roomy);
    m_width->parentWidget()->setFixedWidth(width() >= tightWidth ? sliderWidth : tightSliderWidth);
    m_colors->parentWidget()->setFixedWidth(m_colors->sizeHint().width());
    QWidget::resizeEvent(event);
}

void HandwritingTools::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        name();
    }
    QWidget::changeEvent(event);
}

} // namespace tarnovel::app
