#pragma once

#include <stop_token>

#include <QImage>
#include <QRectF>

#include "imaging/ImageFile.h"

namespace tarnovel {

/// Whether a file's stored planes can be resampled as they are: grey, or YCbCr whose colour is stored at
/// full, half or quarter resolution along each axis.
enum class JpegLayout { Planes, Other };

/// Reads the header, with the decoder's own eyes. Throws an ImageError: Damaged, TooLarge (also for a
/// progressive file whose coefficients would take more than 600 MB), or Unsupported for kinds that nothing
/// here decodes.
JpegLayout inspectJpeg(const ImageFile &file);

/// Resamples `region` of the stored picture (in its pixels, edges going on outside it) to an RGB32 image of
/// `size` in the file's own colour space. Decodes at 1/8, 1/4, 1/2 or full scale: at least twice the target,
/// four times for targets above 2,000 pixels. Throws an ImageError and OperationCancelled.
QImage decodeJpegPlanes(const ImageFile &file, const QRectF &region, QSize size, const std::stop_token &stop);

/// Decodes the whole file at an eighth of its size, for its errors and warnings alone: for layouts whose
/// pixels come from a decoder that takes no notice of warnings. Throws an ImageError and OperationCancelled.
void checkJpegData(const ImageFile &file, const std::stop_token &stop);

} // namespace tarnovel
