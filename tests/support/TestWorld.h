#pragma once

#include <QtGlobal>

namespace tarnovel::test {

/// Sets what every test relies on before an application object exists: UTC, the C locale, the offscreen
/// platform, a temporary folder with a space and an accent in its name, and a home of the test's own.
void settle();

/// From here on any Qt warning fails the running test.
void failOnQtWarnings();

} // namespace tarnovel::test
