#pragma once

#include <unordered_map>
#include <unordered_set>

#include <QString>

#include "language/FieldPattern.h"

/// How exported files are called.
namespace tarnovel::ExportNames {

/// What files are called unless the user says otherwise: "{name}-framed", and the size behind it where every
/// photo has several.
FieldPattern defaultPattern(bool severalSizes);

/// The name of a result: the filled pattern, from the second attempt on a number from 2, and the extension.
/// Characters that part folders become "_". The photo's name in it is cut to 120 characters and further until
/// the whole fits the 255 bytes of a file system, between characters; an empty one is "Photo".
QString fileName(const FieldPattern &pattern, const FieldValues &values, const QString &extension,
                 int attempt);

/// The same by the default pattern.
QString fileName(const QString &photoName, const QString &extension, int attempt);

/// The names that the results of one batch get, in its order. They depend on the list alone, not on what
/// lies in the folder or on what fails, so that any part of the batch, run anywhere, names its own results
/// alike.
class Plan {
public:
    Plan(FieldPattern pattern, QString extension);

    const FieldPattern &pattern() const { return m_pattern; }

    /// The attempt with which the next result of the batch has a name that none before it has.
    int attempt(const FieldValues &values);
    QString name(const FieldValues &values, int attempt) const
    {
        return fileName(m_pattern, values, m_extension, attempt);
    }

private:
    const FieldPattern m_pattern;
    const QString m_extension;
    /// Fingerprints: a hundred thousand names take a few megabytes.
    std::unordered_set<size_t> m_given;
    /// By the fingerprint of a name, the attempt with which it may be free.
    std::unordered_map<size_t, int> m_next;
};

} // namespace tarnovel::ExportNames
