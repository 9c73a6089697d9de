// Draws the sheet of the pens, for looking at: each pen with each finish at three widths, at 100 % of the
// saved picture; once as a tablet reports a signature (pressure, 240 Hz) and once as a mouse does (125 Hz).
//
//     build/release/tools/ink_sheet sheet.png

#include <cmath>
#include <cstdio>

#include <QGuiApplication>
#include <QPainter>

#include "handwriting/HandwritingFinish.h"

namespace {

using namespace tarnovel;

constexpr QSize cellPixels(620, 250);
constexpr std::array widths = {3.0, 6.0, 12.0};
constexpr std::array pens = {InkPen::signature, InkPen::fountain, InkPen::pencil, InkPen::marker};

/// A signature as a string of curve points in a box of 520 × 170; strokes are parted by a negative x.
constexpr QPointF lift(-1, -1);
const std::vector<QPointF> &signaturePoints()
{
    static const std::vector<QPointF> points = {
        {10, 128},  {38, 120},  {78, 92},   {108, 46},  {112, 16},  {100, 8},   {86, 30},   {74, 84},
        {62, 136},  {46, 158},  {28, 154},  {26, 140},  {48, 132},  {82, 126},  {112, 116}, {136, 100},
        {142, 88},  {132, 82},  {120, 94},  {120, 112}, {132, 122}, {150, 114}, {168, 92},  {172, 84},
        {170, 104}, {168, 120}, {180, 98},  {194, 84},  {200, 94},  {196, 112}, {202, 122}, {216, 112},
        {238, 76},  {254, 34},  {252, 18},  {242, 26},  {232, 66},  {228, 106}, {238, 122}, {254, 110},
        {274, 72},  {290, 32},  {288, 16},  {278, 26},  {268, 66},  {264, 106}, {274, 122}, {292, 112},
        {314, 90},  {332, 82},  {320, 82},  {306, 98},  {304, 114}, {314, 120}, {328, 106}, {338, 86},
        {334, 108}, {342, 121}, {362, 116}, {400, 96},  {450, 80},  {508, 74},  lift,       {60, 168},
        {160, 158}, {280, 150}, {400, 150}, {514, 158}, lift,       {398, 44},  lift};
    return points;
}

/// The way between four points as a hand takes it.
QPointF between(const QPointF *p, double t)
{
    return 0.5 * (2 * p[1] + t * (p[2] - p[0]) + t * t * (2 * p[0] - 5 * p[1] + 4 * p[2] - p[3]) +
                  t * t * t * (3 * p[1] - p[0] - 3 * p[2] + p[3]));
}

/// A hand draws slower round tight bends (speed goes with the cube root of the radius), and trembles a
/// little.
InkStroke stroke(std::vector<QPointF> points, bool tablet, int index)
{
    InkStroke written;
    if (points.size() == 1) {
        written.samples = {{points.front(), 0, tablet ? std::optional(0.6) : std::nullopt}};
        return written;
    }
    points.insert(points.begin(), 2 * points[0] - points[1]);
    points.push_back(2 * points.back() - points[points.size() - 2]);
    const double interval = tablet ? 1.0 / 240 : 1.0 / 125;
    double now = 0;
    double due = 0;
    double speed = 300;
    QPointF last = points[1];
    QPointF heading;
    const double steps = 400;
    const double all = steps * static_cast<double>(points.size() - 3);
    for (double i = 0; i <= all; ++i) {
        const auto piece = std::min(static_cast<size_t>(i / steps), points.size() - 4);
        const QPointF at = between(points.data() + piece, i / steps - static_cast<double>(piece));
        const QPointF way = at - last;
        const double length = std::hypot(way.x(), way.y());
        if (length > 0) {
            const QPointF next = way / length;
            const double turn = std::hypot(next.x() - heading.x(), next.y() - heading.y()) / length;
            const double wanted = std::clamp(900 / std::cbrt(1 + 4000 * turn * turn), 120.0, 1500.0);
            speed += (wanted - speed) * std::min(1.0, length / 12);
            heading = next;
            now += length / speed;
        }
        last = at;
        if (now >= due) {
            due = now + interval;
            const double progress = i / all;
            const double press = 0.25 + 0.55 * std::max(0.0, heading.y()) + 0.15 * std::sin(now * 9 + index);
            const double ends = std::min({1.0, progress * 30, (1 - progress) * 14});
            const QPointF tremor(0.35 * std::sin(now * 63), 0.35 * std::sin(now * 71 + 1));
            InkSample sample{tablet ? at + tremor : QPointF(at.toPoint()), now};
            if (tablet) {
                sample.pressure = std::clamp(press, 0.08, 0.95) * ends;
            }
            written.samples.append(sample);
        }
    }
    return written;
}

InkDrawing signature(InkPen pen, double width, bool tablet, const Ink &color)
{
    InkDrawing drawing;
    std::vector<QPointF> points;
    for (const QPointF point : signaturePoints()) {
        if (point != lift) {
            points.push_back(point + QPointF(50, 40));
            continue;
        }
        InkStroke written = stroke(points, tablet, static_cast<int>(drawing.size()));
        written.pen = pen;
        written.width = width;
        written.color = color;
        drawing.append(std::make_shared<const DryStroke>(written));
        points.clear();
    }
    return drawing;
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
    constexpr std::array colors = {Ink{0.05, 0.05, 0.05}, Ink{0.12, 0.23, 0.45}, Ink{0.36, 0.3, 0.55}};
    constexpr int columns = static_cast<int>(widths.size()) * 2;
    constexpr int rows = static_cast<int>(pens.size() * handwritingFinishes.size());
    QImage sheet(cellPixels.width() * columns, cellPixels.height() * rows, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    int row = 0;
    for (const InkPen pen : pens) {
        for (const HandwritingFinish finish : handwritingFinishes) {
            int column = 0;
            for (const bool tablet : {true, false}) {
                for (const double width : widths) {
                    const Ink color = colors.at(static_cast<size_t>(finish));
                    const QImage image =
                        finishedImage(signature(pen, width, tablet, color), {finish, color}, cellPixels, 1);
                    painter.drawImage(column * cellPixels.width(), row * cellPixels.height(), image);
                    ++column;
                }
            }
            ++row;
        }
    }
    painter.end();
    if (!sheet.save(words[1])) {
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(words[1]));
        return 1;
    }
    return 0;
}
