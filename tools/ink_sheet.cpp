// Draws the sheet of the pens, for looking at: each pen with each finish at three widths, at 100 % of the
// saved picture; on the left as a tablet reports a signature, on the right as a mouse would. Below, as an
// export of 4096 pixels shows them: what a mouse wrote without and with the smoothing along its path, and the
// pencil.
//
//     build/release/tools/ink_sheet sheet.png

#include <cstdio>

#include <QGuiApplication>
#include <QPainter>

#include "handwriting/HandwritingFinish.h"
#include "imaging/Resampler.h"
#include "support/RecordedSignature.h"

namespace {

using namespace tarnovel;

constexpr QSize cellPixels(620, 250);
constexpr std::array widths = {3.0, 6.0, 12.0};
constexpr std::array pens = {InkPen::signature, InkPen::fountain, InkPen::pencil, InkPen::marker};
/// One for each finish.
constexpr std::array colors = {softBlack, softBlack, Ink{0.36, 0.3, 0.55}};

/// From the saved picture, whose longer side has 1400 pixels, to an export.
constexpr double exportScale = 4096.0 / 1400;
const QSize exportPixels = (QSizeF(cellPixels) * exportScale).toSize();

/// Pressure, even if it never changes, is told by a pen, whose path is not smoothed again.
enum class Device { Tablet, Mouse, UnsmoothedMouse };

/// A mouse reports half as often, in whole pixels, and feels nothing.
QList<InkSample> reported(const QList<InkSample> &samples, Device device)
{
    if (device == Device::Tablet) {
        return samples;
    }
    QList<InkSample> reports;
    for (qsizetype i = 0; i < samples.size(); i += 2) {
        InkSample report = {samples.at(i).position.toPoint(), samples.at(i).seconds};
        if (device == Device::UnsmoothedMouse) {
            report.pressure = 1;
        }
        reports.append(report);
    }
    return reports;
}

InkDrawing signature(InkPen pen, double width, Device device, const Ink &color)
{
    InkDrawing drawing;
    for (const auto &samples : test::recordedSignature(TARNOVEL_SOURCE_DIR "/samples/signature.txt")) {
        drawing.append(
            std::make_shared<const DryStroke>(InkStroke{pen, color, width, 1, reported(samples, device)}));
    }
    return drawing;
}

void drawRow(QPainter &sheet, int row, InkPen pen, HandwritingFinish finish)
{
    const Ink color = colors.at(static_cast<size_t>(finish));
    int column = 0;
    for (const Device device : {Device::Tablet, Device::Mouse}) {
        for (const double width : widths) {
            sheet.drawImage(
                column * cellPixels.width(), row * cellPixels.height(),
                finishedImage(signature(pen, width, device, color), {finish, color}, cellPixels, 1));
            ++column;
        }
    }
}

void drawExport(QPainter &sheet, QPoint place, InkPen pen, double width, Device device)
{
    const QImage saved = finishedImage(signature(pen, width, device, softBlack),
                                       {HandwritingFinish::color, softBlack}, cellPixels, 1);
    sheet.drawImage(place, resampled(saved, saved.rect(), exportPixels));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    if (words.size() != 2) {
        std::fputs("usage: ink_sheet SHEET.png\n", stderr);
        return 2;
    }
    const int columns = static_cast<int>(widths.size()) * 2;
    const int rows = static_cast<int>(pens.size() * handwritingFinishes.size());
    const int exportsTop = cellPixels.height() * rows;
    QImage sheet(cellPixels.width() * columns, exportsTop + 2 * exportPixels.height(), QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    int row = 0;
    for (const InkPen pen : pens) {
        for (const HandwritingFinish finish : handwritingFinishes) {
            drawRow(painter, row++, pen, finish);
        }
    }
    const QPoint right(exportPixels.width(), 0);
    const QPoint below(0, exportPixels.height());
    const QPoint first(0, exportsTop);
    drawExport(painter, first, InkPen::signature, 6, Device::UnsmoothedMouse);
    drawExport(painter, first + right, InkPen::signature, 6, Device::Mouse);
    drawExport(painter, first + below, InkPen::pencil, 6, Device::Tablet);
    drawExport(painter, first + below + right, InkPen::pencil, 12, Device::Tablet);
    painter.end();
    if (!sheet.save(words[1])) {
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(words[1]));
        return 1;
    }
    return 0;
}
