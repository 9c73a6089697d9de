#include "app/inspector/CanvasSection.h"

#include <array>
#include <cmath>
#include <utility>

#include <QBoxLayout>
#include <QPainter>

#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize tile(80, 80);
constexpr std::array presets = {CanvasPreset::red,   CanvasPreset::instagram, CanvasPreset::square,
                                CanvasPreset::story, CanvasPreset::original,  CanvasPreset::custom};

CanvasPreset presetAt(int index)
{
    return presets.at(static_cast<size_t>(index));
}

/// "16:9" where small numbers say it, else "1.91:1".
QString ratioText(double ratio)
{
    constexpr int largest = 21;
    constexpr double tolerance = 0.004;
    for (int height = 1; height <= largest; ++height) {
        const int width = qRound(ratio * height);
        if (width > 0 && std::abs(double(width) / height - ratio) < tolerance * ratio) {
            return u"%1:%2"_s.arg(width).arg(height);
        }
    }
    return QString::number(ratio, 'f', 2) + u":1"_s;
}

} // namespace

RatioTiles::RatioTiles(Source source, std::function<double(int)> ratio)
    : CardGrid(std::move(source), tile, 3), m_ratio(std::move(ratio))
{
}

void RatioTiles::paintItem(QPainter &painter, int index, const State &state)
{
    CardGrid::paintItem(painter, index, state);
    constexpr QSizeF room(46, 46);
    const QSizeF shape =
        QSizeF(FrameSettings::heldRatio(m_ratio(index)), 1).scaled(room, Qt::KeepAspectRatio);
    const QRectF box(QPointF(itemRect(index).topLeft()) +
                         QPointF((tile.width() - shape.width()) / 2, (tile.height() - shape.height()) / 2),
                     shape);
    Paint::outline(painter, box, 1.5, state.chosen ? theme().accent : theme().inkSecondary, 1.25);
}

CanvasSection::CanvasSection(const EditingContext &context) : Section(context)
{
    m_tiles = new RatioTiles({.count = [] { return static_cast<int>(presets.size()); },
                              .name = [this](int index) { return nameOf(index); },
                              .image = [](int, QSize) { return QImage(); },
                              .chosen =
                                  [this](int index) {
                                      return model().current() &&
                                             model().current()->settings.preset == presetAt(index);
                                  }},
                             [this](int index) { return ratioOf(index); });
    m_tiles->setName(said({"画布", "Canvas", "Format"}));
    column()->addWidget(m_tiles);
    m_tiles->setObjectName(u"presets"_s);
    connect(m_tiles, &ItemView::chosen, this, [this](int index) {
        edits().step([index](FrameSettings &settings) { settings.preset = presetAt(index); });
    });
    addRule();
    addHeading(said({"自定义比例", "Custom ratio", "Format personnalisé"}));
    const NumberField::Range range{.low = 0.1, .high = 100, .step = 1, .decimals = -1};
    m_width = new NumberField(said({"宽", "Width", "Largeur"}), range);
    m_height = new NumberField(said({"高", "Height", "Hauteur"}), range);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    for (NumberField *field : {m_width, m_height}) {
        field->setHeight(32);
        row->addWidget(field, 1);
    }
    row->insertWidget(1, new Label(
                             Type::Body, [] { return u":"_s; }, Label::Tone::Secondary));
    column()->addLayout(row);
    m_width->setObjectName(u"customWidth"_s);
    m_height->setObjectName(u"customHeight"_s);
    connect(m_width, &NumberField::valueTyped, this, [this](double value) {
        edits().adjust(u"customWidth"_s, [value](FrameSettings &settings) {
            settings.preset = CanvasPreset::custom;
            settings.customWidth = value;
        });
    });
    connect(m_height, &NumberField::valueTyped, this, [this](double value) {
        edits().adjust(u"customHeight"_s, [value](FrameSettings &settings) {
            settings.preset = CanvasPreset::custom;
            settings.customHeight = value;
        });
    });
}

QString CanvasSection::nameOf(int index) const
{
    const QString title = canvasPresetTitle(presetAt(index));
    const bool ownRatio =
        presetAt(index) == CanvasPreset::custom || presetAt(index) == CanvasPreset::original;
    return ownRatio && model().current() ? title + u" · "_s + ratioText(ratioOf(index)) : title;
}

double CanvasSection::ratioOf(int index) const
{
    const PhotoItem *photo = model().current();
    if (!photo) {
        return 1;
    }
    FrameSettings settings = photo->settings;
    settings.style = FrameStyle::simple;
    settings.preset = presetAt(index);
    return settings.ratio(photo->size());
}

void CanvasSection::display(const PhotoItem &photo)
{
    m_tiles->update();
    m_width->setPrefix(localized({"宽", "W", "L"}));
    m_height->setPrefix(localized({"高", "H", "H"}));
    m_width->setValue(photo.settings.customWidth);
    m_height->setValue(photo.settings.customHeight);
}

void CanvasSection::reset()
{
    edits().step([](FrameSettings &settings) {
        const FrameSettings fresh;
        settings.preset = fresh.preset;
        settings.customWidth = fresh.customWidth;
        settings.customHeight = fresh.customHeight;
    });
}

} // namespace tarnovel::app
