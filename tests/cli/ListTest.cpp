#include <QDir>
#include <gtest/gtest.h>

#include "cli/Program.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

TEST(Lists, PrintWhatIsOnOffer)
{
    const Program program;
    const QList<Json> templates =
        program.run({u"templates"_s, u"--json"_s, u"--language"_s, u"fr"_s}).lines();
    ASSERT_EQ(templates.size(), 14);
    EXPECT_EQ(templates[2], (Json{{"id", "caption"}, {"title", "Récit"}}));
    const QList<Json> stocks = program.run({u"stocks"_s, u"--json"_s}).lines();
    ASSERT_EQ(stocks.size(), 79);
    EXPECT_EQ(stocks[0],
              (Json{{"brand", "KODAK"}, {"name", "Kodak Portra 160"}, {"marking", "KODAK PORTRA 160"}}));
    const Outcome table = program.run({u"templates"_s});
    EXPECT_TRUE(table.output.startsWith("plain      Pure\nfull       No border\n"))
        << table.output.toStdString();
    EXPECT_EQ(table.errors, "");
}

TEST(Lists, HelpSpeaksThreeLanguages)
{
    const Program program;
    for (const auto &[language, word] : {std::pair("zh", "目标文件夹"), std::pair("en", "Destination folder"),
                                         std::pair("fr", "Dossier de destination")}) {
        const Outcome help =
            program.run({u"export"_s, u"--language"_s, QString::fromLatin1(language), u"--help"_s});
        EXPECT_EQ(help.status, 0);
        EXPECT_TRUE(help.output.contains(word)) << help.output.toStdString();
        for (const char *option :
             {"--template", "--style", "--set", "--text", "--background", "--logo", "--signature", "--size",
              "--format", "--max-mb", "--language", "--json", "--quiet", "--session"}) {
            EXPECT_TRUE(help.output.contains(option)) << option;
        }
    }
    EXPECT_TRUE(program.run({u"--version"_s}).output.startsWith("tarnovel "));
    EXPECT_EQ(program.run({u"export"_s, u"--frame"_s}).status, 2);
}

TEST(Inspect, ReadsWhatTheCameraWrote)
{
    const Program program;
    program.photo(u"plain.png"_s, 30, 20);
    const Outcome outcome = program.run({u"inspect"_s, u"--json"_s, u"plain.png"_s, u"none.jpg"_s});
    EXPECT_EQ(outcome.status, 1);
    const QList<Json> lines = outcome.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0]["name"], "plain");
    EXPECT_EQ(lines[0]["width"], 30);
    EXPECT_EQ(lines[0]["brand"], "");
    EXPECT_FALSE(lines[0]["palette"].empty());
    EXPECT_TRUE(lines[1].contains("error"));

    const QString samples = QStringLiteral(TARNOVEL_SOURCE_DIR "/samples/");
    for (const QString &name : QDir(samples).entryList({u"*.jpg"_s})) {
        const Json line = program.run({u"inspect"_s, u"--json"_s, samples + name}).lines().value(0);
        for (const char *key : {"brand", "model", "exif", "date"}) {
            EXPECT_NE(line[key], "") << key;
        }
        EXPECT_EQ(line["palette"].size(), 3u);
    }
}

} // namespace
} // namespace tarnovel::test
