#include "film/FilmOptions.h"

#include <algorithm>

#include "film/FilmStockCatalog.h"

namespace tarnovel {

using namespace Qt::StringLiterals;

namespace {

struct FormatRow {
    FilmFormat format;
    QString name;
    FilmDimensions dimensions;
    int frames;
};

const FormatRow &formatRow(FilmFormat format)
{
    static const std::array<FormatRow, filmFormats.size()> rows{{
        {FilmFormat::mm35, u"mm35"_s, {35.0, 36.0, 24.0}, 36},
        {FilmFormat::medium645, u"medium645"_s, {61.5, 41.5, 56.0}, 16},
        {FilmFormat::medium66, u"medium66"_s, {61.5, 56.0, 56.0}, 12},
        {FilmFormat::medium67, u"medium67"_s, {61.5, 69.0, 56.0}, 10},
        {FilmFormat::medium69, u"medium69"_s, {61.5, 84.0, 56.0}, 8},
    }};
    const FormatRow &row = rows.at(static_cast<std::size_t>(format));
    Q_ASSERT(row.format == format);
    return row;
}

} // namespace

QString filmFormatName(FilmFormat format)
{
    return formatRow(format).name;
}

std::optional<FilmFormat> filmFormatFromName(const QString &name)
{
    for (const FilmFormat format : filmFormats) {
        if (filmFormatName(format) == name) {
            return format;
        }
    }
    return std::nullopt;
}

FilmDimensions filmDimensions(FilmFormat format)
{
    return formatRow(format).dimensions;
}

int framesPerRoll(FilmFormat format)
{
    return formatRow(format).frames;
}

int printedFrameNumber(FilmFormat format, int number)
{
    return std::clamp(number, 1, framesPerRoll(format));
}

bool isFilmRotated(FilmFormat format, QSizeF source)
{
    const FilmDimensions dimensions = filmDimensions(format);
    const bool landscapePhoto = source.height() <= source.width();
    return !dimensions.hasSquareGate() && landscapePhoto != dimensions.hasLandscapeGate();
}

QSizeF orientedSize(FilmFormat format, QSizeF source)
{
    const FilmDimensions dimensions = filmDimensions(format);
    const QSizeF lying(dimensions.pieceLengthMm(), dimensions.filmWidthMm);
    return isFilmRotated(format, source) ? lying.transposed() : lying;
}

const QStringList &FilmOptions::stocks()
{
    static const QStringList names = [] {
        QStringList list;
        for (const FilmStock &stock : FilmStockCatalog::available()) {
            list.append(stock.name);
        }
        return list;
    }();
    return names;
}

} // namespace tarnovel
