#pragma once

namespace tarnovel::cli {

struct ExportRequest;

/// What a worker process does: it makes one photo at a time for the program that has started it, into that
/// program's temporary folder, until that program has no more for it. Returns the exit status.
int runExportWorker(const ExportRequest &request);

} // namespace tarnovel::cli
