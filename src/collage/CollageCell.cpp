#include "collage/CollageCell.h"

#include <algorithm>

#include "language/AppLanguage.h"

namespace tarnovel {

namespace {

struct Row {
    CellFrame frame;
    const char *name;
    Text title;
};

constexpr std::array<Row, 5> rows = {{
    {CellFrame::none, "none", {"无", "None", "Aucun"}},
    {CellFrame::white, "white", {"白边", "White", "Blanc"}},
    {CellFrame::inner, "inner", {"内框", "Line", "Liseré"}},
    {CellFrame::instant, "instant", {"拍立得", "Instant", "Instantané"}},
    {CellFrame::film, "film", {"胶片", "Film", "Film"}},
}};

const Row &row(CellFrame frame)
{
    return *std::ranges::find(rows, frame, &Row::frame);
}

} // namespace

QString cellFrameTitle(CellFrame frame)
{
    return localized(row(frame).title);
}

QString cellFrameName(CellFrame frame)
{
    return QString::fromLatin1(row(frame).name);
}

std::optional<CellFrame> cellFrameFromName(const QString &name)
{
    const auto found =
        std::ranges::find_if(rows, [&name](const Row &each) { return name == QLatin1StringView(each.name); });
    return found == rows.end() ? std::nullopt : std::optional(found->frame);
}

std::optional<QColor> cellPaper(CellFrame frame)
{
    switch (frame) {
    case CellFrame::none:
        return std::nullopt;
    case CellFrame::film:
        return QColor::fromRgbF(0.12F, 0.12F, 0.11F);
    default:
        return QColor(Qt::white);
    }
}

QRectF cellPhotoRect(CellFrame frame, const QRectF &cell)
{
    // Fractions of the shorter side; an instant print's lower border is more than three times the others.
    const double side = std::min(cell.width(), cell.height());
    const auto inset = [&cell](double by) { return cell.adjusted(by, by, -by, -by); };
    switch (frame) {
    case CellFrame::none:
        return cell;
    case CellFrame::white:
    case CellFrame::inner:
        return inset(0.06 * side);
    case CellFrame::instant:
        return {cell.x() + 0.06 * side, cell.y() + 0.06 * side, cell.width() - 0.12 * side,
                std::max(cell.height() - 0.26 * side, 1.0)};
    case CellFrame::film:
        return inset(0.05 * side);
    }
    return cell;
}

PhotoPlacement cellPlacement(const CollageCell &cell, QSizeF photo, const QRectF &rect)
{
    const QRectF window = cellPhotoRect(cell.frame, rect);
    if (photo.isEmpty() || window.isEmpty()) {
        return {{}, window};
    }
    const double scale =
        std::max(window.width() / photo.width(), window.height() / photo.height()) * cell.zoom;
    const QSizeF drawn = photo * scale;
    const QPointF centre =
        window.center() + QPointF(cell.offset.width() * (drawn.width() - window.width()) / 2,
                                  cell.offset.height() * (drawn.height() - window.height()) / 2);
    return {QRectF(centre.x() - drawn.width() / 2, centre.y() - drawn.height() / 2, drawn.width(),
                   drawn.height()),
            window};
}

} // namespace tarnovel
