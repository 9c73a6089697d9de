#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include "model/Preferences.h"

/// When to ask for a rating: after the third successful export into the photo library at the earliest, and
/// once a version.
namespace tarnovel::ExportReviewPolicy {

/// Counts one successful export, and tells whether to ask now. Here there is no store to rate in: whoever
/// counts may leave the answer be, and the counts go along with the preferences to where there is one.
bool recordSuccess(Preferences &preferences, const QString &currentVersion, const QStringList &arguments,
                   const QProcessEnvironment &environment);

/// Whether a launch argument marks an automated run or a preview, rather than naming a photo.
bool isAutomation(const QString &argument);

/// True in automated runs and in previews.
bool promptsDisabled(const QStringList &arguments, const QProcessEnvironment &environment);

} // namespace tarnovel::ExportReviewPolicy
