#include "render/Emoji.h"

#include <algorithm>
#include <array>

#include <QTextBoundaryFinder>

namespace tarnovel {

namespace {

constexpr char16_t textSelector = 0xFE0E;
constexpr char16_t pictureSelector = 0xFE0F;
constexpr char16_t keycap = 0x20E3;

struct Range {
    char32_t first;
    char32_t last;
};

/// Unicode's property Emoji_Presentation below the planes of pictures, in order.
constexpr auto picturesByDefault = std::to_array<Range>({
    {0x231A, 0x231B},   {0x23E9, 0x23EC},   {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},
    {0x2614, 0x2615},   {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},   {0x26D4, 0x26D4},
    {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},   {0x26FA, 0x26FA},   {0x26FD, 0x26FD},
    {0x2705, 0x2705},   {0x270A, 0x270B},   {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},
    {0x2753, 0x2755},   {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF},
    {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A}, {0x1F1E6, 0x1F1FF}, {0x1F201, 0x1F201}, {0x1F21A, 0x1F21A},
    {0x1F22F, 0x1F22F}, {0x1F232, 0x1F236}, {0x1F238, 0x1F23A}, {0x1F250, 0x1F251},
});

bool isPictureByDefault(char32_t character)
{
    if (character >= 0x1F300 && character <= 0x1FAFF) {
        // Arrows, chess and alchemy stand among the pictures.
        return !(character >= 0x1F650 && character <= 0x1F67F) &&
               !(character >= 0x1F700 && character <= 0x1F7DF) &&
               !(character >= 0x1F800 && character <= 0x1F90B) &&
               !(character >= 0x1FA00 && character <= 0x1FA6F);
    }
    const auto after = std::ranges::upper_bound(picturesByDefault, character, {}, &Range::first);
    return after != picturesByDefault.begin() && character <= (after - 1)->last;
}

bool isPicture(QStringView cluster)
{
    if (cluster.contains(QChar(textSelector))) {
        return false;
    }
    const bool isKeycap = cluster.size() > 1 && cluster.back() == QChar(keycap);
    return isKeycap || (cluster.size() > 1 && cluster.contains(QChar(pictureSelector))) ||
           isPictureByDefault(cluster.toUcs4().value(0));
}

} // namespace

QList<TextStretch> emojiStretches(const QString &text)
{
    QList<TextStretch> stretches;
    // Nearly every text has none.
    if (std::ranges::none_of(text, [](QChar unit) { return unit.unicode() >= 0x200D; })) {
        return stretches;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0, end = finder.toNextBoundary(); end >= 0;
         start = end, end = finder.toNextBoundary()) {
        if (!isPicture(QStringView(text).mid(start, end - start))) {
            continue;
        }
        if (!stretches.isEmpty() && stretches.last().start + stretches.last().length == start) {
            stretches.last().length += static_cast<int>(end - start);
        } else {
            stretches.append({static_cast<int>(start), static_cast<int>(end - start)});
        }
    }
    return stretches;
}

} // namespace tarnovel
