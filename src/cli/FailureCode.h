#pragma once

#include <QString>

#include "pipeline/PipelineError.h"

namespace tarnovel::cli {

/// What kind of failure it was, as scripts read it: "missing", "folder", "permission", "unreadable",
/// "damaged", "too-large", "small-preview", "file-size", "no-space" or "write". The words are for ever.
QString failureCode(const PipelineFailure &failure);
QString failureCode(const FileError &error);

/// Of a photo whose worker process has ended.
inline const QString workerCode = QStringLiteral("worker");

} // namespace tarnovel::cli
