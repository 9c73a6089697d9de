#pragma once

#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

namespace tarnovel {

/// A film as it is sold, and what its edge says after development.
struct FilmStock {
    /// Unique; stands for the film in a stored style.
    QString name;
    /// Printed along the edge as it stands, mixed case included; several stocks may share one.
    QString marking;
    /// The group of the picker.
    QString brand;
    /// Whether the marking has been seen on developed film. An unverified stock is never offered nor printed.
    bool verified = false;

    bool operator==(const FilmStock &) const = default;
};

/// The film stocks on offer and what each prints on its edge. The lists are made once and safe to read from
/// any thread.
namespace FilmStockCatalog {

/// Every row, unverified ones included, in the order of the picker and of the lookup.
const std::vector<FilmStock> &all();

/// The verified rows, in table order.
const std::vector<FilmStock> &available();

/// The brands of the available rows, in order of first appearance.
const QStringList &brands();

/// The first row of the whole table whose name or marking is exactly `name`.
std::optional<FilmStock> item(const QString &name);

/// The text to print on the edge: the trimmed `custom` label when it says anything, else the stock's marking,
/// nothing for an unverified stock, and the name itself for a film that is not in the table.
QString printableLabel(const QString &stock, const std::optional<QString> &custom = {});

} // namespace FilmStockCatalog

} // namespace tarnovel
