#include "app/inspector/SignatureSection.h"

#include <algorithm>

#include <QBoxLayout>
#include <QImage>

#include "app/inspector/EmptyState.h"
#include "app/inspector/PictureWell.h"
#include "app/kit/Button.h"
#include "app/kit/Slider.h"
#include "model/Signature.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

Slider::Range position(double usual)
{
    return {.low = 0,
            .high = 100,
            .step = 1,
            .decimals = 0,
            .unit = {},
            .usual = usual * 100,
            .origin = SliderTrack::Origin::Centre};
}

/// The part of a picture that holds ink: a signature covers the whole frame and is empty but for a line.
QImage inked(const QImage &picture)
{
    QRect ink;
    const QImage alpha = picture.convertToFormat(QImage::Format_Alpha8);
    for (int y = 0; y < alpha.height(); ++y) {
        const uchar *row = alpha.constScanLine(y);
        const auto *const end = row + alpha.width();
        const auto *first = std::find_if(row, end, [](uchar level) { return level != 0; });
        if (first == end) {
            continue;
        }
        int last = alpha.width() - 1;
        while (row[last] == 0) {
            --last;
        }
        ink |= QRect(QPoint(static_cast<int>(first - row), y), QPoint(last, y));
    }
    return ink.isEmpty() ? picture : picture.copy(ink);
}

} // namespace

SignatureSection::SignatureSection(const EditorContext &context) : Section(context)
{
    m_well = new PictureWell;
    column()->addWidget(m_well);
    auto *first = new Button(Button::Kind::Secondary, said({"书写…", "Write…", "Écrire…"}), "signature");
    first->setObjectName(u"write"_s);
    m_empty =
        new EmptyState("signature", said({"还没有签名", "No signature yet", "Pas encore de signature"}),
                       said({"用鼠标或笔写一次，就能用在每张照片上。",
                             "Write it once with mouse or pen; then it fits every photo.",
                             "Écrivez-la une fois à la souris ou au stylet ; elle ira à chaque photo."}),
                       first);
    column()->addWidget(m_empty);
    m_change = new QWidget;
    auto *row = new QHBoxLayout(m_change);
    row->setContentsMargins(0, 12, 0, 0);
    row->setSpacing(8);
    m_write =
        new Button(Button::Kind::Secondary, said({"重新书写…", "Write again…", "Réécrire…"}), "signature");
    m_write->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_remove =
        new Button(Button::Kind::Secondary, said({"移除签名", "Remove signature", "Retirer la signature"}),
                   "trash", Button::Face::IconOnly);
    row->addWidget(m_write, 1);
    row->addWidget(m_remove);
    column()->addWidget(m_change);
    m_controls = new QWidget;
    auto *controls = new QVBoxLayout(m_controls);
    controls->setContentsMargins(0, 12, 0, 0);
    controls->setSpacing(8);
    controls->addWidget(makeRule());
    m_size = new Slider(said({"大小", "Size", "Taille"}), {.low = 2,
                                                           .high = 100,
                                                           .step = 1,
                                                           .decimals = 0,
                                                           .unit = u" %"_s,
                                                           .usual = signatureAsWritten.width * 100});
    m_x = new Slider(said({"水平位置", "Horizontal position", "Position horizontale"}),
                     position(signatureAsWritten.x));
    m_y = new Slider(said({"垂直位置", "Vertical position", "Position verticale"}),
                     position(signatureAsWritten.y));
    for (Slider *slider : {m_size, m_x, m_y}) {
        controls->addWidget(slider);
        connect(slider, &Slider::released, this, [this] { edits().endAdjusting(); });
    }
    column()->addWidget(m_controls);
    m_write->setObjectName(u"write"_s);
    m_remove->setObjectName(u"removeSignature"_s);
    m_size->setObjectName(u"signatureSize"_s);
    m_x->setObjectName(u"signatureX"_s);
    m_y->setObjectName(u"signatureY"_s);
    for (const Button *button : {first, m_write}) {
        connect(button, &QPushButton::clicked, &context.state, &EditorState::signatureAsked);
    }
    connect(m_remove, &QPushButton::clicked, this,
            [this] { edits().step([](FrameSettings &settings) { settings = withoutSignature(settings); }); });
    const auto slides = [this](Slider *slider, const QString &key,
                               std::optional<double> FrameSettings::*field) {
        connect(slider, &Slider::changed, this, [this, key, field](double value) {
            edits().adjust(key, [field, value](FrameSettings &settings) { settings.*field = value / 100; });
        });
    };
    slides(m_size, u"signatureWidth"_s, &FrameSettings::handwritingWidth);
    slides(m_x, u"signatureX"_s, &FrameSettings::handwritingX);
    slides(m_y, u"signatureY"_s, &FrameSettings::handwritingY);
}

void SignatureSection::display(const PhotoItem &photo)
{
    const FrameSettings &settings = photo.settings;
    const bool present = settings.handwritingFile.has_value();
    m_well->setVisible(present);
    m_empty->setVisible(!present);
    m_change->setVisible(present);
    m_controls->setVisible(present);
    if (present) {
        const QImage &picture = model().previews().signature;
        if (picture.cacheKey() != m_shown) {
            m_shown = picture.cacheKey();
            m_well->setPicture(inked(picture));
        }
        const SignaturePlace place = signaturePlace(settings);
        m_size->setValue(place.width * 100);
        m_x->setValue(place.x * 100);
        m_y->setValue(place.y * 100);
    }
}

void SignatureSection::reset()
{
    // Where it was written: over the whole frame.
    edits().step([](FrameSettings &settings) { placeSignature(settings, signatureAsWritten); });
}

} // namespace tarnovel::app
