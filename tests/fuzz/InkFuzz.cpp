// What a pointer reports: positions, times and pressures of any value, in text lines "x y seconds pressure"
// as in samples/signature.txt. Ink is drawn from them, the same in parts as whole.

#include <cstdlib>
#include <sstream>
#include <string>

#include "handwriting/InkRenderer.h"

using namespace tarnovel;

namespace {

constexpr int mostSamples = 200;
constexpr QSize page(96, 64);

InkStroke stroke(const std::string &text)
{
    InkStroke made;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    made.pen = static_cast<InkPen>(line.empty() ? 0 : static_cast<unsigned char>(line.front()) % 4);
    while (made.samples.size() < mostSamples && std::getline(lines, line)) {
        InkSample sample;
        char *end = line.data();
        sample.position.rx() = std::strtod(end, &end);
        sample.position.ry() = std::strtod(end, &end);
        sample.seconds = std::strtod(end, &end);
        sample.pressure = std::strtod(end, &end);
        made.samples.append(sample);
    }
    return made;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    const DryStroke written(stroke(std::string(reinterpret_cast<const char *>(bytes), count)));
    QImage whole(page, QImage::Format_ARGB32_Premultiplied);
    whole.fill(Qt::transparent);
    QImage parts = whole;
    InkRenderer::draw(whole, {0, 0}, 1, written, whole.rect());
    InkRenderer::draw(parts, {0, 0}, 1, written, QRect(0, 0, page.width() / 2, page.height()));
    InkRenderer::draw(parts, {0, 0}, 1, written, QRect(page.width() / 2, 0, page.width() / 2, page.height()));
    if (whole != parts) {
        std::abort();
    }
    InkRenderer::marks(written, page);
    return 0;
}
