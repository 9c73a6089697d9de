#pragma once

namespace tarnovel::cli {

class Interruption;
struct ExportRequest;

/// Frames the pictures that are in a folder and those that come, until it is interrupted; the photo at hand
/// is finished then. Returns the exit status, which is 0 after an interruption. Throws a UsageError.
int runWatch(const ExportRequest &request, const Interruption &interruption);

} // namespace tarnovel::cli
