#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "base/FileError.h"
#include "base/Json.h"
#include "base/Uuid.h"

namespace tarnovel {
namespace {

std::string complaint(const QByteArray &document)
{
    try {
        parseJson(document);
    } catch (const JsonError &error) {
        return error.reason();
    }
    return "";
}

TEST(Json, RefusesWhatTheGrammarDoes)
{
    for (const char *document : {"", "{", "[1,]", "{'a':1}", "{\"a\":01}", "[NaN]", "[1e999]", "{} {}",
                                 "\"\x80\"", "// note\n{}", "\"\\ud800\""}) {
        EXPECT_NE(complaint(document), "") << document;
    }
    EXPECT_NE(complaint(R"({"a":1,"b":{"c":1,"c":2}})").find("\"c\" stands twice"), std::string::npos);
    EXPECT_EQ(complaint(R"([{"a":1},{"a":2}])"), "");
    EXPECT_EQ(complaint(QByteArray(64, '[') + QByteArray(64, ']')), "");
    EXPECT_EQ(complaint(QByteArray(65, '[') + QByteArray(65, ']')), "more than 64 levels deep");
    EXPECT_EQ(complaint(QByteArray(100'000, '[')), "more than 64 levels deep");
}

QByteArray objectOf(int members)
{
    QByteArray document = "{";
    for (int i = 0; i < members; ++i) {
        document += (i ? ",\"k" : "\"k") + QByteArray::number(i) + "\":1";
    }
    return document + '}';
}

TEST(Json, BoundsWhatADocumentMayAskFor)
{
    EXPECT_EQ(complaint(objectOf(1000)), "");
    EXPECT_EQ(complaint(objectOf(200'000)), "more than 1000 members in one object");
    EXPECT_EQ(complaint('[' + QByteArray(1'999'998, '1').replace("11", "1,") + "1]"),
              "more than a million values");
    EXPECT_EQ(complaint('"' + QByteArray(63'999'998, 'x') + '"'), "");
    EXPECT_EQ(complaint('"' + QByteArray(63'999'999, 'x') + '"'), "larger than 64 MB");
}

TEST(Json, LooksAtAFilesSizeBeforeItIsRead)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("huge.json"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(20'000'000'000));
    EXPECT_THROW(readJsonFile(path), JsonError);
    ASSERT_TRUE(file.resize(3));
    EXPECT_EQ(readJsonFile(path).size(), 3);
    EXPECT_THROW(readJsonFile(folder.path()), FileError);
    EXPECT_THROW(readJsonFile(folder.filePath(QStringLiteral("absent"))), FileError);
}

TEST(Json, KeepsWhatStandsBeforeAFault)
{
    const PartialJson partial = parseJsonUpToFault(R"({"a":[{"b":1},{"b":2},{"b":)");
    ASSERT_TRUE(partial.fault);
    ASSERT_EQ(partial.value.at("a").size(), 3U);
    EXPECT_EQ(partial.value.at("a").at(1).at("b"), 2);
    EXPECT_FALSE(parseJsonUpToFault("[]").fault);
}

TEST(JsonReader, CutsATextBetweenCharacters)
{
    const Json text = jsonText(QStringLiteral("ab😀c"));
    EXPECT_EQ(JsonReader(text).text(3), QStringLiteral("ab"));
    EXPECT_EQ(JsonReader(text).text(4), QStringLiteral("ab😀"));
    EXPECT_EQ(JsonReader(text).text(9), QStringLiteral("ab😀c"));
}

TEST(Json, KeepsEveryBitOfANumber)
{
    for (const double value :
         {0.1, 1.0 / 3, 5e-324, 1.7976931348623157e308, -0.0, 1.0, 123456789012345678.0}) {
        const Json read = parseJson(writeJson(Json(value)));
        EXPECT_EQ(std::bit_cast<quint64>(JsonReader(read).number()), std::bit_cast<quint64>(value)) << value;
    }
}

TEST(JsonReader, NamesThePlaceOfTheFault)
{
    const Json document = parseJson(R"({"a/b":[{"n":1.5},{"n":"one"}],"null":null})");
    const JsonReader reader(document);
    const auto pathOf = [](const auto &read) {
        try {
            read();
        } catch (const JsonError &error) {
            return error.path();
        }
        return std::string("no error");
    };
    EXPECT_EQ(pathOf([&] { reader.member("a/b").elements().at(1).member("n").number(); }), "/a~1b/1/n");
    EXPECT_EQ(pathOf([&] { reader.member("a/b").elements().at(0).member("n").integer(); }), "/a~1b/0/n");
    EXPECT_EQ(pathOf([&] { reader.member("absent"); }), "/absent");
    EXPECT_EQ(pathOf([&] { reader.member("null").text(); }), "/null");
    EXPECT_FALSE(reader.optionalMember("null"));
}

TEST(Uuid, ReadsTheCanonicalFormAlone)
{
    const QString text = QStringLiteral("3F2A9C1B-0000-4ABC-8DEF-0123456789AB");
    ASSERT_TRUE(uuidFromText(text));
    EXPECT_EQ(uuidText(*uuidFromText(text.toLower())), text);
    for (const QString &wrong :
         {u'{' + text + u'}', text.left(35), text + u'0', QString(text).remove(u'-'), QString()}) {
        EXPECT_FALSE(uuidFromText(wrong)) << wrong.toStdString();
    }
}

} // namespace
} // namespace tarnovel
