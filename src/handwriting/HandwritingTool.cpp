#include "handwriting/HandwritingTool.h"

#include <algorithm>

#include "language/AppLanguage.h"

namespace tarnovel {

namespace {

/// A finer eraser could not be aimed.
constexpr double leastEraser = 12;

constexpr Ink fromHex(unsigned rgb)
{
    return {(rgb >> 16 & 255U) / 255.0, (rgb >> 8 & 255U) / 255.0, (rgb & 255U) / 255.0};
}

} // namespace

QString handwritingToolTitle(HandwritingTool tool)
{
    switch (tool) {
    case HandwritingTool::Fountain:
        return localized({"钢笔", "Fountain", "Plume"});
    case HandwritingTool::Pencil:
        return localized({"铅笔", "Pencil", "Crayon"});
    case HandwritingTool::Marker:
        return localized({"马克笔", "Marker", "Marqueur"});
    case HandwritingTool::Eraser:
        return localized({"橡皮", "Eraser", "Gomme"});
    case HandwritingTool::Signature:
        break;
    }
    return localized({"签字笔", "Signature", "Signature"});
}

std::optional<InkPen> penOf(HandwritingTool tool)
{
    switch (tool) {
    case HandwritingTool::Signature:
        return InkPen::signature;
    case HandwritingTool::Pencil:
        return InkPen::pencil;
    case HandwritingTool::Marker:
        return InkPen::marker;
    case HandwritingTool::Eraser:
        return std::nullopt;
    case HandwritingTool::Fountain:
        break;
    }
    return InkPen::fountain;
}

double toolDiameter(HandwritingTool tool, double width)
{
    const std::optional<InkPen> pen = penOf(tool);
    return pen ? tipDiameter(*pen, width) : std::max(leastEraser, width);
}

QList<InkSwatch> inkSwatches()
{
    return {{softBlack, localized({"墨黑", "Ink black", "Noir d’encre"})},
            {fromHex(0x71706C), localized({"灰", "Grey", "Gris"})},
            {fromHex(0xFFFFFF), localized({"白", "White", "Blanc"})},
            {fromHex(0xA63D2D), localized({"朱红", "Brick red", "Rouge brique"})},
            {fromHex(0xC8803A), localized({"赭橙", "Ochre", "Ocre"})},
            {fromHex(0xD9B44A), localized({"金黄", "Gold", "Or"})},
            {fromHex(0x1F5E4B), localized({"松绿", "Pine green", "Vert sapin"})},
            {fromHex(0x7FA558), localized({"叶绿", "Leaf green", "Vert feuille"})},
            {fromHex(0x2D6E8F), localized({"湖蓝", "Lake blue", "Bleu lac"})},
            {fromHex(0x1F3B73), localized({"靛蓝", "Blue-black", "Bleu nuit"})},
            {fromHex(0x5B4C8C), localized({"紫", "Violet", "Violet"})},
            {fromHex(0x8E416B), localized({"梅红", "Plum", "Prune"})},
            {fromHex(0xCED9A3), localized({"嫩绿", "Pale green", "Vert pâle"})},
            {fromHex(0x2E5938), localized({"墨绿", "Forest green", "Vert forêt"})}};
}

QString eraserHint()
{
    return localized(
        {"拖过笔画即可擦除", "Drag over strokes to erase", "Passez sur les traits pour les effacer"});
}

QString handwritingGuide()
{
    return localized(
        {"双指张开放大，捏合缩小，双指拖动可向任意方向移动。笔画固定在成品画框上。切换到“移动”可单指浏览；照"
         "片"
         "下方的空白处也可以书写。",
         "Pinch out to zoom in, pinch in to zoom out, and drag with two fingers in any direction. Strokes "
         "stay "
         "fixed to the finished frame. Switch to Move for one-finger navigation; the blank area below the "
         "photo "
         "is writable too.",
         "Écartez deux doigts pour agrandir, pincez pour réduire et glissez à deux doigts dans toutes les "
         "directions. Les traits restent fixés au cadre fini. Passez à Déplacer pour naviguer d’un "
         "doigt\u202f; "
         "la zone vide sous la photo accepte aussi l’écriture."});
}

} // namespace tarnovel
