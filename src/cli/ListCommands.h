#pragma once

#include <QStringList>

namespace tarnovel::cli {

class Interruption;

/// What the import would read of each photo. Returns the exit status.
int runInspect(const QStringList &photos, bool json, const Interruption &interruption);

/// The built-in templates and the film stocks, in the order in which they are offered.
int runTemplates(bool json);
/// Rows in columns that are as wide as the widest. Returns the exit status.
int printColumns(const QList<QStringList> &rows);
int runStocks(bool json);

} // namespace tarnovel::cli
