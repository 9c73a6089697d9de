#include "model/Styling.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tarnovel {

void keepCameraTexts(FrameSettings &settings, const FrameSettings &photoSettings)
{
    for (const QString &id : {u"brand"_s, u"model"_s, u"exif"_s, u"date"_s}) {
        TextLayer *layer = settings.layer(id);
        const TextLayer *own = photoSettings.layer(id);
        if (layer && own) {
            layer->text = own->text;
        }
    }
}

void numberFilmFrame(FrameSettings &settings, int offset)
{
    if (settings.style != FrameStyle::film) {
        return;
    }
    if (!settings.film) {
        settings.film = FilmOptions();
    }
    // The number is only ever printed up to the roll's last frame; it need not count beyond an integer.
    constexpr int highest = 1'000'000'000;
    settings.film->number = std::min(settings.film->number, highest) + offset;
}

PhotoItem styled(const PhotoItem &item, const FrameSettings &style, int offset)
{
    PhotoItem result = item;
    result.settings = style;
    result.settings.normalize();
    keepCameraTexts(result.settings, item.settings);
    numberFilmFrame(result.settings, offset);
    return result;
}

} // namespace tarnovel
