#pragma once

#include <optional>

#include <QStringList>

#include "pipeline/ExportOptions.h"

namespace tarnovel::cli {

class Interruption;

/// What `tarnovel export` was asked for, as typed.
struct ExportRequest {
    QStringList photos;
    QString folder;
    /// The stored session's photos instead of `photos`.
    bool session = false;
    std::optional<QString> templateId;
    std::optional<QString> styleFile;
    QStringList sets;
    QStringList texts;
    std::optional<QString> background;
    std::optional<QString> logo;
    std::optional<QString> signature;
    QString size = QStringLiteral("4096");
    QString format = QStringLiteral("jpeg");
    std::optional<QString> maxMb;
    bool json = false;
    bool quiet = false;
};

/// Returns the exit status. Throws a UsageError before anything is written.
int runExport(const ExportRequest &request, const Interruption &interruption);

} // namespace tarnovel::cli
