#include <gtest/gtest.h>

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
    EXPECT_EQ(complaint(QByteArray(100'000, '[')), "more than 64 levels deep");
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
