#pragma once

#include <functional>
#include <optional>

#include <QImage>
#include <QStringList>

#include "app/kit/Phrase.h"
#include "language/PhotographyQuotes.h"

class QWidget;

namespace tarnovel::app {

class Overlay;

/// What the user sees after an export.
struct Success {
    Phrase heading;
    QString folder;
    QStringList files;
    /// The names of photos that were left out.
    QStringList skipped;
    /// Of the library's summary: what else can be done with the files.
    Phrase hint;
    /// Asked for again whenever the sheet is painted: they arrive after the files.
    std::function<QList<QImage>()> thumbnails;
    std::optional<PhotographyQuote> quote;
};

/// Opens the summary over the window, with what can be done with the files next.
Overlay *showSuccess(QWidget *window, const Success &success, std::function<void(const QString &)> said);

} // namespace tarnovel::app
