#pragma once

#include <optional>

#include <QString>
#include <QUuid>

namespace tarnovel {

/// The canonical 8-4-4-4-12 form in upper case, without braces.
QString uuidText(const QUuid &uuid);

/// None for anything but the canonical form, in either case.
std::optional<QUuid> uuidFromText(const QString &text);

} // namespace tarnovel
