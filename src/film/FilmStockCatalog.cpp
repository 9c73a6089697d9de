#include "film/FilmStockCatalog.h"

#include <algorithm>

namespace tarnovel::FilmStockCatalog {

using namespace Qt::StringLiterals;

namespace {

/// Stands in the table where nobody has yet seen a developed roll.
const QString &unknownMarking()
{
    static const QString marking = u"[NEW EDGE MARKING — VERIFY]"_s;
    return marking;
}

} // namespace

const std::vector<FilmStock> &available()
{
    static const std::vector<FilmStock> rows = [] {
        std::vector<FilmStock> verified;
        std::copy_if(all().begin(), all().end(), std::back_inserter(verified),
                     [](const FilmStock &stock) { return stock.verified; });
        return verified;
    }();
    return rows;
}

const QStringList &brands()
{
    static const QStringList names = [] {
        QStringList list;
        for (const FilmStock &stock : available()) {
            list.append(stock.brand);
        }
        list.removeDuplicates();
        return list;
    }();
    return names;
}

std::optional<FilmStock> item(const QString &name)
{
    const auto row = std::find_if(all().begin(), all().end(), [&](const FilmStock &stock) {
        return stock.name == name || stock.marking == name;
    });
    return row == all().end() ? std::nullopt : std::optional(*row);
}

QString printableLabel(const QString &stock, const std::optional<QString> &custom)
{
    QString label = custom.value_or(QString()).trimmed();
    if (!label.isEmpty() && label != unknownMarking()) {
        return label;
    }
    const std::optional<FilmStock> found = item(stock);
    if (!found) {
        return stock;
    }
    return found->verified ? found->marking : QString();
}

} // namespace tarnovel::FilmStockCatalog
