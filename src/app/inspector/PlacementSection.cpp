#include "app/inspector/PlacementSection.h"

#include <QBoxLayout>

#include "app/kit/Slider.h"
#include "app/kit/Switch.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

const Slider::Range offsets{.low = -50,
                            .high = 50,
                            .step = 1,
                            .decimals = 1,
                            .unit = {},
                            .usual = 0,
                            .origin = SliderTrack::Origin::Centre};

} // namespace

PlacementSection::PlacementSection(const EditingContext &context) : Section(context)
{
    m_size = new Slider(said({"大小", "Size", "Taille"}),
                        {.low = 10, .high = 100, .step = 1, .decimals = 0, .unit = u" %"_s, .usual = 88});
    column()->addWidget(m_size);
    addRule();
    m_x = new Slider(said({"水平位置", "Horizontal position", "Position horizontale"}), offsets);
    m_y = new Slider(said({"垂直位置", "Vertical position", "Position verticale"}), offsets);
    column()->addWidget(m_x);
    column()->addSpacing(8);
    column()->addWidget(m_y);
    addRule();
    m_lockX = new Switch(said({"左右等距", "Equal left & right", "Marges gauche et droite égales"}));
    m_lockY = new Switch(said({"上下等距", "Equal top & bottom", "Marges haut et bas égales"}));
    column()->addWidget(m_lockX);
    column()->addWidget(m_lockY);
    m_size->setObjectName(u"size"_s);
    m_x->setObjectName(u"x"_s);
    m_y->setObjectName(u"y"_s);
    m_lockX->setObjectName(u"lockX"_s);
    m_lockY->setObjectName(u"lockY"_s);
    addRule();
    addHint("info", said({"也可以直接拖动或双指缩放照片。", "You can also drag and pinch on the photo.",
                          "Vous pouvez aussi glisser et pincer la photo."}));

    const auto slides = [this](Slider *slider, const QString &key, double FrameSettings::*field) {
        connect(slider, &Slider::changed, this, [this, key, field](double value) {
            edits().adjust(key, [field, value](FrameSettings &settings) { settings.*field = value / 100; });
        });
        connect(slider, &Slider::released, this, [this] { edits().endAdjusting(); });
    };
    slides(m_size, u"scale"_s, &FrameSettings::scale);
    slides(m_x, u"x"_s, &FrameSettings::x);
    slides(m_y, u"y"_s, &FrameSettings::y);
    const auto toggles = [this](Switch *row, bool FrameSettings::*field) {
        connect(row, &Switch::toggledByUser, this, [this, field](bool on) {
            edits().step([field, on](FrameSettings &settings) { settings.*field = on; });
        });
    };
    toggles(m_lockX, &FrameSettings::lockX);
    toggles(m_lockY, &FrameSettings::lockY);
}

void PlacementSection::display(const PhotoItem &photo)
{
    const FrameSettings &settings = photo.settings;
    m_size->setValue(settings.scale * 100);
    m_x->setValue(settings.lockX ? 0 : settings.x * 100);
    m_y->setValue(settings.lockY ? 0 : settings.y * 100);
    m_x->setEnabled(!settings.lockX);
    m_y->setEnabled(!settings.lockY);
    m_lockX->show(settings.lockX);
    m_lockY->show(settings.lockY);
}

void PlacementSection::reset()
{
    edits().step([](FrameSettings &settings) {
        const FrameSettings fresh;
        settings.scale = fresh.scale;
        settings.x = fresh.x;
        settings.y = fresh.y;
    });
}

} // namespace tarnovel::app
