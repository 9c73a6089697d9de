#include "editor/EditorRules.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QDate>

#include "editor/EditorModel.h"
#include "language/AppLanguage.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

SliderCheckpoints::SliderCheckpoints(EditorModel &model, Clock &clock)
    : SliderCheckpoints([&model] { model.checkpoint(); }, clock)
{
    m_steps = [&model] { return model.steps(); };
}

void SliderCheckpoints::change(const QString &key)
{
    constexpr std::chrono::seconds pause(1);
    const auto now = m_clock.elapsed();
    if (key != m_key || now - m_time > pause || (m_steps && m_steps() != m_stepsThen)) {
        m_begin();
    }
    m_stepsThen = m_steps ? m_steps() : 0;
    m_key = key;
    m_time = now;
}

namespace CaptureDateEntry {

QString absentNotice()
{
    return localized({"未找到拍摄日期，可手动填写。", "No capture date found. Enter one manually.",
                      "Aucune date de prise de vue. Saisissez-la."});
}

QString invalidNotice()
{
    return localized({"请输入有效日期，例如 2026.09.22。", "Enter a valid date, such as 2026.09.22.",
                      "Saisissez une date valide, par exemple 2026.09.22."});
}

bool enter(EditorModel &model, const QString &text)
{
    const QDate date = QDate::fromString(text.trimmed(), u"yyyy.M.d"_s);
    const PhotoItem *item = model.current();
    if (!item || !date.isValid()) {
        return false;
    }
    FrameSettings settings = item->settings;
    settings.normalize();
    TextLayer &layer = *settings.layer(u"date"_s);
    layer.text = date.toString(u"yyyy.MM.dd"_s);
    // Whoever enters a date wants to see it.
    layer.visible = true;
    model.step(settings);
    return true;
}

} // namespace CaptureDateEntry

namespace QuickPositions {

namespace {

constexpr double margin = 0.06;
constexpr double emptyMargin = 0.08;

/// The centre on one axis for a layer of this half extent, both as fractions of the axis.
double centre(int third, double half, double edge)
{
    if (third == 1 || 2 * (edge + half) > 1) {
        return 0.5;
    }
    return std::clamp(third == 0 ? edge + half : 1 - edge - half, 0.02, 0.98);
}

} // namespace

QString title(QuickPosition position)
{
    constexpr std::array<Text, 9> titles = {{{"左上", "Top left", "En haut à gauche"},
                                             {"顶部居中", "Top center", "En haut au centre"},
                                             {"右上", "Top right", "En haut à droite"},
                                             {"左侧居中", "Center left", "Au centre à gauche"},
                                             {"居中", "Center", "Au centre"},
                                             {"右侧居中", "Center right", "Au centre à droite"},
                                             {"左下", "Bottom left", "En bas à gauche"},
                                             {"底部居中", "Bottom center", "En bas au centre"},
                                             {"右下", "Bottom right", "En bas à droite"}}};
    return localized(titles.at(static_cast<size_t>(position)));
}

QPointF place(QuickPosition position, const TextLayer &layer, QSizeF canvas)
{
    const int column = static_cast<int>(position) % 3;
    const int row = static_cast<int>(position) / 3;
    const QSizeF size = CompositionRenderer::textRect(layer, canvas).size();
    if (layer.text.isEmpty() && !layer.imageFile) {
        return {centre(column, 0, emptyMargin), centre(row, 0, emptyMargin)};
    }
    const double angle = std::fmod(layer.rotation.value_or(0), 360) * std::numbers::pi / 180;
    const double cosine = std::abs(std::cos(angle));
    const double sine = std::abs(std::sin(angle));
    const double halfX = (size.width() * cosine + size.height() * sine) / 2 / canvas.width();
    const double halfY = (size.width() * sine + size.height() * cosine) / 2 / canvas.height();
    return {centre(column, halfX, margin), centre(row, halfY, margin * canvas.width() / canvas.height())};
}

} // namespace QuickPositions

QString layerTitle(const TextLayer &layer)
{
    static constexpr std::array names = std::to_array<std::pair<const char *, Text>>({
        {"brand", {"品牌", "Brand", "Marque"}},
        {"model", {"机型", "Model", "Modèle"}},
        {"exif", {"参数", "Exposure", "Exposition"}},
        {"watermark", {"水印", "Watermark", "Filigrane"}},
        {"title", {"标题", "Title", "Titre"}},
        {"caption", {"说明", "Caption", "Légende"}},
        {"date", {"日期", "Date", "Date"}},
    });
    for (const auto &[id, name] : names) {
        if (layer.id == QLatin1StringView(id)) {
            return localized(name);
        }
    }
    return localized({"文字", "Text", "Texte"});
}

namespace Placeholders {

bool isWanted(const TextLayer &layer)
{
    return layer.visible && !layer.imageFile && layer.text.trimmed().isEmpty();
}

TextLayer shown(const TextLayer &layer, QSizeF canvas)
{
    constexpr double smallestHeight = 11;
    TextLayer named = layer;
    if (isWanted(layer)) {
        named.text = layerTitle(layer);
        named.size = std::max(layer.size, smallestHeight / std::max(canvas.width(), 1.0));
    }
    return named;
}

} // namespace Placeholders

namespace Confirmations {

QString removePhoto()
{
    return localized({"从本次编辑中移除？原照片仍在相册中。",
                      "Remove from this editing session? The original stays in Photos.",
                      "Retirer de cette session ? L’original reste dans Photos."});
}

QString clearAll()
{
    return localized({"清空全部照片？原照片仍会保留在相册中。",
                      "Clear all photos? The originals will remain in Photos.",
                      "Effacer toutes les photos ? Les originaux restent dans Photos."});
}

} // namespace Confirmations

} // namespace tarnovel
