#include "model/FrameSettings.h"

#include <algorithm>

#include "language/AppLanguage.h"

namespace tarnovel {

QString canvasPresetTitle(CanvasPreset preset)
{
    switch (preset) {
    case CanvasPreset::red:
        return localized({"小红书 · 3:4", "Xiaohongshu · 3:4", "Xiaohongshu · 3:4"});
    case CanvasPreset::instagram:
        return localized({"Instagram · 4:5", "Instagram · 4:5", "Instagram · 4:5"});
    case CanvasPreset::square:
        return localized({"方图 · 1:1", "Square · 1:1", "Carré · 1:1"});
    case CanvasPreset::story:
        return localized({"抖音 / TikTok · 9:16", "Douyin / TikTok · 9:16", "Douyin / TikTok · 9:16"});
    case CanvasPreset::original:
        return localized({"照片原比例", "Photo ratio", "Ratio de la photo"});
    case CanvasPreset::custom:
        return localized({"自定义比例", "Custom ratio", "Ratio personnalisé"});
    }
    return {};
}

const QList<TextLayer> &defaultLayers()
{
    static const QList<TextLayer> layers = [] {
        const auto layer = [](const char *id, double y, double size) {
            TextLayer result;
            result.id = QString::fromLatin1(id);
            result.y = y;
            result.size = size;
            return result;
        };
        return QList<TextLayer>{layer("brand", 0.9, 0.028),  layer("model", 0.94, 0.02),
                                layer("exif", 0.975, 0.015), layer("watermark", 0.06, 0.028),
                                layer("title", 0.85, 0.04),  layer("caption", 0.91, 0.024),
                                layer("date", 0.955, 0.02)};
    }();
    return layers;
}

void FrameSettings::normalize()
{
    for (const TextLayer &wanted : defaultLayers()) {
        if (!layer(wanted.id)) {
            layers.append(wanted);
        }
    }
}

double FrameSettings::heldRatio(double ratio)
{
    return std::clamp(ratio, 0.2, 5.0);
}

double FrameSettings::ratio(QSizeF source) const
{
    switch (preset) {
    case CanvasPreset::red:
        return 0.75;
    case CanvasPreset::instagram:
        return 0.8;
    case CanvasPreset::square:
        return 1.0;
    case CanvasPreset::story:
        return 0.5625;
    case CanvasPreset::custom:
        return heldRatio(customHeight >= 1 ? customWidth / customHeight : customWidth);
    case CanvasPreset::original:
        break;
    }
    if (style == FrameStyle::film) {
        const QSizeF piece = orientedSize(film ? film->format : FilmFormat::mm35, source);
        return piece.width() / piece.height();
    }
    return source.width() / std::max(source.height(), 1.0);
}

std::set<QString> FrameSettings::referencedFiles() const
{
    std::set<QString> files;
    const auto add = [&files](const std::optional<QString> &file) {
        if (file) {
            files.insert(*file);
        }
    };
    add(backgroundFile);
    add(handwritingFile);
    for (const TextLayer &each : layers) {
        add(each.imageFile);
    }
    return files;
}

TextLayer *FrameSettings::layer(const QString &id)
{
    const auto found = std::ranges::find(layers, id, &TextLayer::id);
    return found == layers.end() ? nullptr : &*found;
}

const TextLayer *FrameSettings::layer(const QString &id) const
{
    const auto found = std::ranges::find(layers, id, &TextLayer::id);
    return found == layers.end() ? nullptr : &*found;
}

} // namespace tarnovel
