#pragma once

#include <QList>
#include <QString>

namespace tarnovel {

/// A stretch of UTF-16 units.
struct TextStretch {
    int start = 0;
    int length = 0;
    bool operator==(const TextStretch &) const = default;
};

/// The stretches of a text that Unicode wants shown as colour pictures: characters that are pictures by
/// default, those followed by the emoji variation selector (such as ☀️ and ❤️), and keycaps. A
/// character followed by the text selector is none.
QList<TextStretch> emojiStretches(const QString &text);

} // namespace tarnovel
