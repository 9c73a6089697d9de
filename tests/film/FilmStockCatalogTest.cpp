#include "film/FilmStockCatalog.h"

#include <QSet>
#include <gtest/gtest.h>

#include "film/FilmOptions.h"

namespace tarnovel {
namespace {

using namespace Qt::StringLiterals;

const QString placeholder = u"[NEW EDGE MARKING — VERIFY]"_s;

TEST(FilmStockCatalog, OffersTheVerifiedRowsInTableOrder)
{
    QStringList offered;
    QSet<QString> names;
    for (const FilmStock &stock : FilmStockCatalog::all()) {
        names.insert(stock.name);
        EXPECT_NE(stock.verified, stock.marking == placeholder) << stock.name.toStdString();
        if (stock.verified) {
            offered.append(stock.name);
        }
    }
    EXPECT_EQ(names.size(), std::ssize(FilmStockCatalog::all())) << "a name stands for one stock";
    EXPECT_LT(offered.size(), names.size()) << "some are still to be verified";
    QStringList available;
    for (const FilmStock &stock : FilmStockCatalog::available()) {
        available.append(stock.name);
    }
    EXPECT_EQ(available, offered);
    EXPECT_EQ(FilmOptions::stocks(), offered);
    EXPECT_EQ(offered.first(), u"Kodak Portra 160"_s);
    EXPECT_TRUE(FilmOptions::stocks().contains(FilmOptions().stock));
}

TEST(FilmStockCatalog, GroupsBrandsAsTheyFirstAppear)
{
    const QStringList expected{u"KODAK"_s,     u"FUJIFILM"_s,
                               u"ILFORD"_s,    u"KENTMERE"_s,
                               u"CINESTILL"_s, u"HARMAN"_s,
                               u"FOMA"_s,      u"ADOX"_s,
                               u"ROLLEI"_s,    u"AGFA"_s,
                               u"BERGGER"_s,   u"ORWO / WOLFEN"_s,
                               u"FERRANIA"_s,  u"KODAK MOTION PICTURE"_s};
    EXPECT_EQ(FilmStockCatalog::brands(), expected);
}

TEST(FilmStockCatalog, FindsTheFirstRowByNameOrMarking)
{
    const auto nameOf = [](const QString &query) {
        const auto stock = FilmStockCatalog::item(query);
        return stock ? stock->name : u"none"_s;
    };
    EXPECT_EQ(nameOf(u"KODAK 200-8"_s), u"Kodak ColorPlus 200"_s);
    EXPECT_EQ(nameOf(u"Kodak Kodacolor 200"_s), u"Kodak Kodacolor 200"_s);
    EXPECT_EQ(nameOf(u"BERGGER PANCHRO 400"_s), u"Bergger Pancro 400"_s);
    EXPECT_EQ(nameOf(u"CINESTILL BwXX"_s), u"CineStill BwXX"_s);
    EXPECT_EQ(nameOf(placeholder), u"Kodak Ektacolor Pro 160"_s);
    EXPECT_EQ(nameOf(u"kodak portra 400"_s), u"none"_s);
    EXPECT_EQ(nameOf(u"Kodak Portra 400 "_s), u"none"_s);
    EXPECT_EQ(nameOf({}), u"none"_s);
}

TEST(FilmStockCatalog, PrintsTheUsersLabelThenTheMarkingThenTheFilmsOwnName)
{
    const auto label = FilmStockCatalog::printableLabel;
    EXPECT_EQ(label(u"Kodak Tri-X 400"_s, std::nullopt), u"KODAK 400TX"_s);
    EXPECT_EQ(label(u"Kodak Tri-X 400"_s, u"   "_s), u"KODAK 400TX"_s);
    EXPECT_EQ(label(u"Kodak Tri-X 400"_s, u"  MY ROLL\n "_s), u"MY ROLL"_s);
    EXPECT_EQ(label(u"KODAK PORTRA 160"_s, std::nullopt), u"KODAK PORTRA 160"_s);
    EXPECT_EQ(label(u"Kodak Ektapan 400"_s, std::nullopt), QString());
    EXPECT_EQ(label(u"Kodak Ektapan 400"_s, placeholder), QString());
    EXPECT_EQ(label(u"Kodak Ektapan 400"_s, u"TRIAL"_s), u"TRIAL"_s);
    EXPECT_EQ(label(placeholder, std::nullopt), QString());
    EXPECT_EQ(label(u" my film "_s, std::nullopt), u" my film "_s);
    EXPECT_EQ(label(u"my film"_s, placeholder), u"my film"_s);
}

} // namespace
} // namespace tarnovel
