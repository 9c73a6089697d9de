#pragma once

#include <array>
#include <optional>
#include <vector>

#include <QImage>

namespace tarnovel {

/// Tells about how large JPEG files of a picture would be: a scattered sample of its blocks is transformed
/// once for each subsampling, and for a quality the bits of just these are counted.
class JpegSizeSample {
public:
    /// The pixels are opaque ones of 32 bits, blue first.
    explicit JpegSizeSample(const QImage &image);

    struct Estimate {
        double bytes = 0;
        /// The standard error that chance alone would give the sample, as a part of the size. A picture that
        /// is empty but for some busy places has a large one.
        double error = 0;
    };
    /// Of the whole file that JpegEncoder makes at `hundredths`, 1…100. Of the sample one part in `share` is
    /// counted. Throws an std::bad_alloc at most.
    Estimate estimate(int hundredths, size_t share = 1);

    /// The file's bytes beside the picture's data.
    static qint64 headerBytes();

private:
    /// Blocks that follow one another in the file, and the level that the one before leaves to the first.
    struct Run {
        size_t first = 0;
        size_t count = 0;
        int16_t before = 0;
        /// How many units of coded blocks it stands for.
        int units = 0;
        bool chroma = false;
        size_t tile = 0;
    };
    struct Transformed {
        /// Eight times those of the transform, in the file's order.
        std::vector<int16_t> coefficients;
        std::vector<Run> runs;
        /// How many units of coded blocks the picture has.
        double allUnits = 0;
    };

    Transformed transformed(int subsampling) const;

    QImage m_image;
    QImage m_sheet;
    /// For each tile of the sheet how many columns and rows of it lie in the picture.
    std::vector<QSize> m_tiles;
    std::optional<Transformed> m_halfColour;
    std::optional<Transformed> m_fullColour;
};

} // namespace tarnovel
