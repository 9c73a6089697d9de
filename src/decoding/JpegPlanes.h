#pragma once

#include <optional>
#include <stop_token>

#include <QImage>
#include <QList>

#include "decoding/ImageFile.h"

namespace tarnovel {

/// Resamples parts of the stored picture (in its pixels, edges going on outside it) from one decoding, to
/// RGB32 images in the file's own colour space. Decodes at 1/8, 1/4, 1/2 or full scale: at least twice the
/// target, four times for targets above 2,000 pixels. None where the file's planes cannot be resampled as
/// they are: they can if it is grey, or YCbCr whose colour is stored at full, half or quarter resolution
/// along each axis.
///
/// Throws an ImageError: Damaged, TooLarge (also for a progressive file whose coefficients would take more
/// than 600 MB), or Unsupported for kinds that nothing here decodes; and OperationCancelled.
std::optional<QList<QImage>> decodeJpegPlanes(const ImageFile &file, const QList<PicturePart> &parts,
                                              const std::stop_token &stop);

/// Decodes the whole file at an eighth of its size, for its errors and warnings alone: for layouts whose
/// pixels come from a decoder that takes no notice of warnings. Throws an ImageError and OperationCancelled.
void checkJpegData(const ImageFile &file, const std::stop_token &stop);

} // namespace tarnovel
