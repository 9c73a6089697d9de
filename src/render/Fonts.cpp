#include "render/Fonts.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace tarnovel::Fonts {

namespace {

QStringList families(const QString &fontStyle)
{
    if (fontStyle == u"serif"_s) {
        return {u"Noto Serif"_s, u"Noto Serif CJK SC"_s};
    }
    if (fontStyle == u"rounded"_s) {
        return {u"Quicksand"_s, u"Noto Sans CJK SC"_s};
    }
    if (fontStyle == u"mono"_s) {
        return {u"JetBrains Mono"_s, u"Noto Sans Mono CJK SC"_s};
    }
    if (fontStyle == u"handwritten"_s) {
        return {u"Comic Neue"_s, u"LXGW WenKai"_s};
    }
    return {u"Inter"_s, u"Noto Sans CJK SC"_s};
}

} // namespace

QFont face(const std::optional<QString> &fontStyle, QFont::Weight weight, int pixelSize)
{
    QFont font(families(fontStyle.value_or(QString())));
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::PreferOutline);
    return font;
}

} // namespace tarnovel::Fonts
