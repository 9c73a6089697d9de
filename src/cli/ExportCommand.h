#pragma once

#include <memory>
#include <optional>

#include <QStringList>

#include "cli/PhotoList.h"
#include "cli/PhotoMaker.h"
#include "cli/StyleOptions.h"
#include "language/FieldPattern.h"

namespace tarnovel::cli {

class Interruption;
struct BatchOutput;

/// What `tarnovel export` was asked for, as typed.
struct ExportRequest {
    PhotoSelection selection;
    QString folder;
    /// The stored session's photos instead of the selection.
    bool session = false;
    StyleRequest style;
    /// One where none is typed.
    QStringList sizes;
    QString format = QStringLiteral("jpeg");
    std::optional<QString> maxMb;
    std::optional<QString> name;
    std::optional<QString> shard;
    std::optional<QString> jobs;
    bool skipExisting = false;
    bool dryRun = false;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    /// Of a worker: the photos of the session as they were when the program started.
    QString itemsFile;
};

/// The sizes that were typed, each once. Throws a UsageError.
QList<WantedSize> wantedSizes(const ExportRequest &request);

/// The pattern of the names. Throws a UsageError with the place of what is wrong in it.
FieldPattern namePattern(const ExportRequest &request);

/// What the options say beyond wrong values of single ones. Throws a UsageError.
void checkOptions(const ExportRequest &request);

/// Says what is odd about a request without being wrong.
void warn(const ExportRequest &request, const Styler *styler);

/// Where results go and how they are called.
BatchOutput outputFor(const ExportRequest &request);

/// Makes photos in this process, or in several workers. `items` is the file with the photos of a session.
std::unique_ptr<PhotoMaker> makerFor(const ExportRequest &request, int workers, const PhotoSource &source,
                                     const QString &temporary, const QString &items);

/// The photos that a program has written down for its workers.
QList<PhotoItem> itemsFrom(const QString &file);

/// Returns the exit status. Throws a UsageError before anything is written.
int runExport(const ExportRequest &request, const Interruption &interruption);

} // namespace tarnovel::cli
