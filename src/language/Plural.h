#pragma once

#include "language/AppLanguage.h"

namespace tarnovel {

/// A text with a number, "%1" in its place: `one` for one thing, `other` for any other number. French counts
/// nothing as one; Chinese knows no difference, so both of its variants are the same.
QString counted(qint64 count, const Text &one, const Text &other);

/// "1 photo", "12 photos".
QString countedPhotos(qint64 count);

} // namespace tarnovel
