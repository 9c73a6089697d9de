#pragma once

#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

#include "base/Json.h"

namespace tarnovel::cli {

/// One field of a style, as `--set` names it; in the path of a layer's field, "ID" stands for the layer's id.
struct StyleField {
    enum class Type { Text, Number, Integer, Boolean, Choice, Color };

    QString path;
    Type type = Type::Text;
    /// Numbers outside are held to these where they are used; none where any number is as good.
    std::optional<double> least = {};
    std::optional<double> most = {};
    /// Of a choice.
    QStringList choices = {};
    /// May also be null, for "as it is without".
    bool optional = false;
    /// What a new style holds; null for nothing.
    Json byDefault = {};

    QString typeName() const;
};

/// Every field that `--set` knows, in the order of the record.
const std::vector<StyleField> &styleFields();

/// The field of this path, with a layer's id in the place of "ID"; null for a path that names a whole record
/// or nothing.
const StyleField *styleFieldAt(const QString &path);

/// Prints all of them. Returns the exit status.
int runFields(bool json);

} // namespace tarnovel::cli
