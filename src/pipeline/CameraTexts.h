#pragma once

#include <QString>

#include "imaging/CaptureMetadata.h"
#include "language/FieldPattern.h"

namespace tarnovel {

/// What a photo's frame can say of how it was taken; empty texts for what the camera did not write.
struct CameraTexts {
    QString brand;
    QString model;
    /// For example "35 mm · f/2.8 · 1/250 s · ISO 400".
    QString exif;
    /// The camera's own calendar date, for example "2024.05.01".
    QString date;

    static CameraTexts from(const CaptureMetadata &metadata);
};

/// What the camera wrote, as the fields of a pattern show it: the same words as in the frames' own texts.
void setCameraFields(FieldValues &values, const CaptureMetadata &metadata);

} // namespace tarnovel
