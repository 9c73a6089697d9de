#pragma once

#include <QString>

#include "film/FilmOptions.h"

namespace tarnovel {

/// The format as a film photographer calls it, for the picker, in the current language.
QString filmFormatTitle(FilmFormat format);

} // namespace tarnovel
