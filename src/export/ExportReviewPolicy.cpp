#include "export/ExportReviewPolicy.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace tarnovel::ExportReviewPolicy {

bool recordSuccess(Preferences &preferences, const QString &currentVersion, const QStringList &arguments,
                   const QProcessEnvironment &environment)
{
    constexpr int soonest = 3;
    const double count =
        std::trunc(std::clamp(preferences.get(PreferenceKeys::successfulExportCount), 0.0, 1e9)) + 1;
    preferences.set(PreferenceKeys::successfulExportCount, count);
    if (promptsDisabled(arguments, environment) || count < soonest || currentVersion.isEmpty() ||
        preferences.get(PreferenceKeys::lastExportReviewVersion).toString() == currentVersion) {
        return false;
    }
    preferences.set(PreferenceKeys::lastExportReviewVersion, {currentVersion});
    return true;
}

bool isAutomation(const QString &argument)
{
    return argument == u"-disable-review-prompt"_s || argument.startsWith(u"-preview-"_s) ||
           argument.toLower().contains(u"uitest"_s);
}

bool promptsDisabled(const QStringList &arguments, const QProcessEnvironment &environment)
{
    return std::ranges::any_of(arguments, isAutomation) ||
           environment.contains(u"XCTestConfigurationFilePath"_s) ||
           environment.value(u"XCODE_RUNNING_FOR_PREVIEWS"_s) == u"1"_s;
}

} // namespace tarnovel::ExportReviewPolicy
