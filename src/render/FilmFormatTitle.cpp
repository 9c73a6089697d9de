#include "render/FilmFormatTitle.h"

#include "language/AppLanguage.h"

namespace tarnovel {

QString filmFormatTitle(FilmFormat format)
{
    switch (format) {
    case FilmFormat::mm35:
        return localized({"35 毫米", "35 mm", "35\u202fmm"});
    case FilmFormat::medium645:
        return localized({"645", "645", "4,5×6"});
    case FilmFormat::medium66:
        return localized({"6×6", "6×6", "6×6"});
    case FilmFormat::medium67:
        return localized({"6×7", "6×7", "6×7"});
    case FilmFormat::medium69:
        return localized({"6×9", "6×9", "6×9"});
    }
    Q_UNREACHABLE();
}

} // namespace tarnovel
