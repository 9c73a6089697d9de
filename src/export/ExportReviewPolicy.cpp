#include "export/ExportReviewPolicy.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tarnovel::ExportReviewPolicy {

bool recordSuccess(Preferences &preferences, const QString &currentVersion, const QStringList &arguments,
                   const QProcessEnvironment &environment)
{
    constexpr int soonest = 3;
    const QString countKey = u"successfulExportCount"_s;
    const QString versionKey = u"lastExportReviewVersion"_s;
    const int count = static_cast<int>(std::clamp(preferences.number(countKey, 0), 0.0, 1e9)) + 1;
    preferences.setValue(countKey, count);
    if (promptsDisabled(arguments, environment) || count < soonest || currentVersion.isEmpty() ||
        preferences.value(versionKey).toString() == currentVersion) {
        return false;
    }
    preferences.setValue(versionKey, currentVersion);
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
