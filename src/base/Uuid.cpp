#include "base/Uuid.h"

namespace tarnovel {

QString uuidText(const QUuid &uuid)
{
    return uuid.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> uuidFromText(const QString &text)
{
    const QUuid uuid = QUuid::fromString(text);
    // Qt also reads braces and a missing tail; only the text that it would write itself is canonical.
    if (uuidText(uuid) != text.toUpper()) {
        return std::nullopt;
    }
    return uuid;
}

} // namespace tarnovel
