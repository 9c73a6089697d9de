#include "export/ExportChoices.h"

#include "export/ExportNames.h"
#include "language/AppLanguage.h"
#include "language/Plural.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

ExportChoices ExportChoices::stored(const Preferences &preferences)
{
    ExportChoices choices;
    const double resolution = preferences.get(PreferenceKeys::exportResolution);
    if (resolution == 1080 || resolution == 0) {
        choices.resolution = static_cast<int>(resolution);
    }
    choices.png = preferences.get(PreferenceKeys::exportPng);
    const double limit = preferences.get(PreferenceKeys::exportMaxMB);
    if (limit == 1 || limit == 2 || limit == 5) {
        choices.maxMB = limit;
    }
    const QString name = preferences.get(PreferenceKeys::exportName).toString();
    if (!FieldPattern(name).fault()) {
        choices.name = name;
    }
    return choices;
}

ExportChoices ExportChoices::forSheet()
{
    ExportChoices choices;
    choices.resolution = 1080;
    return choices;
}

void ExportChoices::store(Preferences &preferences) const
{
    preferences.set(PreferenceKeys::exportResolution, double(resolution));
    preferences.set(PreferenceKeys::exportPng, png);
    preferences.set(PreferenceKeys::exportMaxMB, maxMB);
    preferences.set(PreferenceKeys::exportName, QVariant(name));
}

ExportOptions ExportChoices::options() const
{
    ExportOptions options;
    options.fullResolution = resolution == 0;
    options.longEdge = resolution == 0 ? 1080 : resolution;
    options.png = png;
    options.maxMB = png ? 0 : maxMB;
    return options;
}

FieldPattern ExportChoices::namePattern() const
{
    return name.isEmpty() ? ExportNames::defaultPattern(false) : FieldPattern(name);
}

QString ExportChoices::sizeName() const
{
    return resolution == 0 ? u"original"_s : QString::number(resolution);
}

QList<PhotoItem> ExportChoices::photos(const EditorModel &model) const
{
    const PhotoItem *current = model.current();
    if (!current) {
        return {};
    }
    return all ? model.photos() : QList<PhotoItem>{*current};
}

namespace ExportTexts {

QString sizeGroup()
{
    return localized({"尺寸", "Size", "Taille"});
}

QList<Choice> sizes()
{
    return {{1080, localized({"短边 1080 像素", "1080 px short edge", "Petit côté 1080 px"})},
            {4096, localized({"长边 4096 像素", "4096 px long edge", "Grand côté 4096 px"})},
            {0, localized({"原始尺寸", "Original size", "Taille d’origine"})}};
}

QString formatGroup()
{
    return localized({"格式", "Format", "Format"});
}

QString limitGroup()
{
    return localized({"大小上限", "Size limit", "Taille maximale"});
}

QList<Choice> limits()
{
    QList<Choice> list = {{0, localized({"不限", "None", "Aucune"})}};
    for (const int limit : {1, 2, 5}) {
        list.append({static_cast<double>(limit), QString::number(limit) + localized({" MB", " MB", " Mo"})});
    }
    return list;
}

QString startButton(qsizetype count)
{
    if (count < 2) {
        return localized({"导出到文件夹…", "Export to folder…", "Exporter vers un dossier…"});
    }
    // French leaves the count to the list beside the button.
    return localized({"%1 张到文件夹…", "Export %1 photos to folder…", "Exporter vers un dossier…"})
        .replace(u"%1"_s, QString::number(count));
}

QString progress(int done, int total)
{
    return localized({"正在处理照片 ", "Processing photos ", "Traitement des photos "}) +
           QString::number(done) + u" / "_s + QString::number(total);
}

QString cancelButton()
{
    return localized({"取消", "Cancel", "Annuler"});
}

QString cancelled(qsizetype written)
{
    return counted(
        written,
        {"已取消。已导出的 %1 张保留在文件夹中。", "Cancelled. %1 exported photo remains in the folder.",
         "Annulé. %1 photo exportée reste dans le dossier."},
        {"已取消。已导出的 %1 张保留在文件夹中。", "Cancelled. %1 exported photos remain in the folder.",
         "Annulé. %1 photos exportées restent dans le dossier."});
}

QString failed(const QString &description)
{
    return localized({"导出失败：", "Export failed: ", "Échec de l’export : "}) + description;
}

QString exported(qsizetype count)
{
    return counted(count, {"已导出 %1 张照片", "%1 photo exported", "%1 photo exportée"},
                   {"已导出 %1 张照片", "%1 photos exported", "%1 photos exportées"});
}

QString privacy()
{
    return localized({"无应用水印，无位置数据。", "No app watermark. No location data.",
                      "Sans filigrane ni données de localisation."});
}

} // namespace ExportTexts

} // namespace tarnovel
