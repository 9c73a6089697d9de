#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "handwriting/InkStroke.h"

namespace tarnovel::test {

/// The strokes of samples/signature.txt: a line "x y seconds pressure" a sample, as a tablet reports them at
/// 240 Hz, and an empty line after each stroke. They lie in a box of 620 × 250.
inline QList<QList<InkSample>> recordedSignature(const char *path)
{
    QList<QList<InkSample>> strokes;
    QList<InkSample> samples;
    std::ifstream file(path);
    for (std::string row; std::getline(file, row);) {
        std::istringstream fields(row);
        double x = 0;
        double y = 0;
        double seconds = 0;
        double pressure = 0;
        if (fields >> x >> y >> seconds >> pressure) {
            samples.append({{x, y}, seconds, pressure});
        } else if (!samples.isEmpty()) {
            strokes.append(std::exchange(samples, {}));
        }
    }
    return strokes;
}

} // namespace tarnovel::test
