#include "app/inspector/SignatureSection.h"

#include <algorithm>

#include <QBoxLayout>
#include <QImage>

#include "app/inspector/PictureHolder.h"
#include "app/inspector/PictureWell.h"
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

SignatureSection::SignatureSection(const EditingContext &context) : Section(context)
{
    m_holder = new PictureHolder(
        {.icon = "signature",
         .heading = said({"还没有签名", "No signature yet", "Pas encore de signature"}),
         .text = said({"用鼠标或笔写一次，就能用在每张照片上。",
                       "Write it once with mouse or pen; then it fits every photo.",
                       "Écrivez-la une fois à la souris ou au stylet ; elle ira à chaque photo."}),
         .chooseIcon = "signature",
         .choose = said({"书写…", "Write…", "Écrire…"}),
         .replace = said({"重新书写…", "Write again…", "Réécrire…"}),
         .remove = said({"移除签名", "Remove signature", "Retirer la signature"}),
         .chooseName = u"write"_s,
         .removeName = u"removeSignature"_s});
    column()->addWidget(m_holder);
    m_holder->controls()->setSpacing(8);
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
        m_holder->controls()->addWidget(slider);
        connect(slider, &Slider::released, this, [this] { edits().endAdjusting(); });
    }
    m_size->setObjectName(u"signatureSize"_s);
    m_x->setObjectName(u"signatureX"_s);
    m_y->setObjectName(u"signatureY"_s);
    connect(m_holder, &PictureHolder::chooseAsked, &context.state, &EditorState::signatureAsked);
    connect(m_holder, &PictureHolder::removeAsked, this,
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
    m_holder->setPresent(present);
    if (present) {
        const QImage &picture = model().previews().signature;
        if (picture.cacheKey() != m_shown) {
            m_shown = picture.cacheKey();
            m_holder->well()->setPicture(inked(picture));
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
