#pragma once

#include <QByteArray>
#include <QList>
#include <QUuid>

#include "handwriting/HandwritingFinish.h"
#include "handwriting/InkStroke.h"

namespace tarnovel {

/// An unfinished signature as it is kept from one start of the program to the next.
struct InkDraft {
    /// The photo that is being signed.
    QUuid photo;
    HandwritingFinish finish = HandwritingFinish::color;
    QList<InkStroke> strokes;
    bool operator==(const InkDraft &) const = default;
};

QByteArray writeInkDraft(const InkDraft &draft);

/// Throws a JsonError with its path for anything that is missing or malformed.
InkDraft readInkDraft(const QByteArray &document);

} // namespace tarnovel
