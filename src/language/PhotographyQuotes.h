#pragma once

#include <optional>
#include <span>

#include <QString>

#include "language/AppLanguage.h"

namespace tarnovel {

/// What a photographer said about seeing and making photographs; texts in UTF-8.
struct PhotographyQuote {
    /// Stays the same when rows are added or texts are polished.
    const char *id;
    const char *zh;
    const char *en;
    const char *zhAuthor;
    /// In Latin letters, for English and French.
    const char *enAuthor;
    const char *fr;

    QString text(AppLanguage language) const;
    QString author(AppLanguage language) const;
};

namespace PhotographyQuotes {

std::span<const PhotographyQuote> all();

/// One row, each as likely as the others whatever was drawn before; none only if there were no rows.
std::optional<PhotographyQuote> random();

} // namespace PhotographyQuotes

} // namespace tarnovel
