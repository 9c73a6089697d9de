#include "app/inspector/LayerControls.h"

#include <cmath>

#include <QBoxLayout>

#include "app/inspector/Section.h"
#include "app/kit/Field.h"
#include "app/kit/Label.h"
#include "app/kit/PositionPad.h"
#include "app/kit/Slider.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr double canvasWidth = 1000;
/// How near a layer has to be to a quick position to be shown as there.
constexpr double near = 0.002;

NumberField::Range coordinates()
{
    return {.low = 2, .high = 98, .step = 1, .decimals = 0};
}

} // namespace

QSizeF referenceCanvas(const PhotoItem &photo)
{
    return {canvasWidth, canvasWidth / std::clamp(photo.settings.ratio(photo.size()), 0.05, 20.0)};
}

LayerShape::LayerShape(SettingsEdits &edits)
    : m_edits(edits),
      m_size(new Slider(said({"字号", "Size", "Taille"}), {.low = LayerLimits::smallest * 100,
                                                           .high = LayerLimits::largest * 100,
                                                           .step = 0.1,
                                                           .decimals = 1,
                                                           .unit = u" %"_s,
                                                           .usual = 2.4})),
      m_rotation(new Slider(said({"旋转", "Rotation", "Rotation"}), {.low = -180,
                                                                     .high = 180,
                                                                     .step = 1,
                                                                     .decimals = 0,
                                                                     .unit = u"°"_s,
                                                                     .usual = 0,
                                                                     .origin = SliderTrack::Origin::Centre}))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(m_size);
    column->addWidget(m_rotation);
    m_size->setObjectName(u"layerSize"_s);
    m_rotation->setObjectName(u"layerRotation"_s);
    connect(m_size, &Slider::changed, this, [this](double value) {
        m_edits.adjust(u"size "_s + m_id,
                       inLayer(m_id, [value](TextLayer &layer) { layer.size = value / 100; }));
    });
    connect(m_rotation, &Slider::changed, this, [this](double value) {
        m_edits.adjust(u"rotation "_s + m_id, inLayer(m_id, [value](TextLayer &layer) {
                           layer.rotation = value == 0 ? std::nullopt : std::optional(value);
                       }));
    });
    for (Slider *slider : {m_size, m_rotation}) {
        connect(slider, &Slider::released, this, [this] { m_edits.endAdjusting(); });
    }
}

void LayerShape::display(const TextLayer &layer)
{
    m_id = layer.id;
    m_size->setValue(layer.size * 100);
    m_rotation->setValue(std::remainder(layer.rotation.value_or(0), 360));
}

LayerPlace::LayerPlace(EditorModel &model, SettingsEdits &edits)
    : m_model(model),
      m_edits(edits),
      m_pad(new PositionPad),
      m_name(new Label(Type::Body, {}, Label::Tone::Secondary)),
      m_x(new NumberField(said({"水平位置", "Horizontal position", "Position horizontale"}), coordinates())),
      m_y(new NumberField(said({"垂直位置", "Vertical position", "Position verticale"}), coordinates()))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(16);
    m_pad->setName(said({"快速位置", "Quick position", "Position rapide"}));
    row->addWidget(m_pad, 0, Qt::AlignTop);
    auto *column = new QVBoxLayout;
    column->setSpacing(0);
    column->addWidget(new Label(Type::BodyStrong, said({"快速位置", "Quick position", "Position rapide"})));
    m_name->setFixedHeight(20);
    m_name->setWordWrap(false);
    column->addWidget(m_name);
    column->addStretch();
    auto *fields = new QHBoxLayout;
    fields->setSpacing(8);
    m_x->setPrefix(u"X"_s);
    m_y->setPrefix(u"Y"_s);
    fields->addWidget(m_x);
    fields->addWidget(m_y);
    column->addLayout(fields);
    row->addLayout(column, 1);
    m_pad->setObjectName(u"pad"_s);
    m_x->setObjectName(u"layerX"_s);
    m_y->setObjectName(u"layerY"_s);
    connect(m_pad, &ItemView::chosen, this, [this](int index) {
        const PhotoItem *photo = m_model.current();
        if (!photo || !photo->settings.layer(m_id)) {
            return;
        }
        const QPointF place = QuickPositions::place(QuickPositions::all.at(static_cast<size_t>(index)),
                                                    *photo->settings.layer(m_id), referenceCanvas(*photo));
        m_edits.step(inLayer(m_id, [place](TextLayer &layer) {
            layer.x = place.x();
            layer.y = place.y();
        }));
    });
    const auto types = [this](NumberField *field, double TextLayer::*axis) {
        connect(field, &NumberField::valueTyped, this, [this, axis](double value) {
            m_edits.adjust(u"place "_s + m_id,
                           inLayer(m_id, [axis, value](TextLayer &layer) { layer.*axis = value / 100; }));
        });
    };
    types(m_x, &TextLayer::x);
    types(m_y, &TextLayer::y);
}

void LayerPlace::display(const PhotoItem &photo, const TextLayer &layer)
{
    m_id = layer.id;
    m_x->setValue(layer.x * 100);
    m_y->setValue(layer.y * 100);
    int found = -1;
    for (const QuickPosition position : QuickPositions::all) {
        const QPointF away =
            QuickPositions::place(position, layer, referenceCanvas(photo)) - QPointF(layer.x, layer.y);
        if (std::abs(away.x()) < near && std::abs(away.y()) < near) {
            found = static_cast<int>(position);
        }
    }
    m_pad->setCurrent(found);
    m_name->setPhrase([found] {
        return found < 0 ? localized({"自定义", "Custom", "Personnalisée"})
                         : QuickPositions::title(QuickPositions::all.at(static_cast<size_t>(found)));
    });
}

} // namespace tarnovel::app
