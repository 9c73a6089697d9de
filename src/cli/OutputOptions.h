#pragma once

#include <memory>
#include <optional>

#include <QString>

#include "base/ScratchFolder.h"
#include "pipeline/ExportOptions.h"

namespace tarnovel::cli {

/// Something that stops a whole command before its first photo.
struct Refusal {
    QString what;
    QString message;
};

/// Sets format and size limit from --format and --max-mb. Throws a UsageError.
void setFormat(ExportOptions &options, const QString &format, const std::optional<QString> &maxMb);

/// Makes the folder and sweeps what a killed run left there. Throws a Refusal.
void makeFolder(const QString &folder);

/// What is said of a picture, other than a photo, that cannot be read.
QString unreadablePicture();

/// A folder of this run alone, closed to other users, that goes with it. Throws a Refusal where there can be
/// none.
class TemporaryFolder {
public:
    TemporaryFolder();
    QString path() const { return m_folder->path(); }

private:
    std::unique_ptr<ScratchFolder> m_folder;
};

} // namespace tarnovel::cli
