#include <gtest/gtest.h>

#include "export/ExportNames.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

TEST(ExportNames, FollowThePhotosName)
{
    const auto name = [](const QString &photo, int attempt = 0) {
        return ExportNames::fileName(photo, u"jpg"_s, attempt).toStdString();
    };
    EXPECT_EQ(name(u"IMG_0042"_s), "IMG_0042-framed.jpg");
    EXPECT_EQ(name(u"IMG_0042"_s, 1), "IMG_0042-framed-2.jpg");
    EXPECT_EQ(name(u"IMG_0042"_s, 9), "IMG_0042-framed-10.jpg");
    EXPECT_EQ(name(u"a/b:c\\d"_s), "a_b_c_d-framed.jpg");
    EXPECT_EQ(name(QString(QChar(0)) + u"a\nb"_s), "_a_b-framed.jpg");
    EXPECT_EQ(name(QString()), "Photo-framed.jpg");
    EXPECT_EQ(name(QString(200, u'x')), std::string(120, 'x').append("-framed.jpg"));
}

TEST(ExportNames, AreCutBetweenCharactersToFitTheFileSystem)
{
    // A family of four is one character of 25 bytes: nine fit beside "-framed.png", with 19 bytes to spare.
    const QString family = u"👨‍👩‍👧‍👦"_s;
    EXPECT_EQ(ExportNames::fileName(family.repeated(40), u"png"_s, 0), family.repeated(9) + u"-framed.png"_s);
    for (const QString &text : {u"照"_s, u"é"_s, u"e\u0301"_s}) {
        const QString name = ExportNames::fileName(text.repeated(300), u"jpg"_s, 11);
        EXPECT_LE(name.toUtf8().size(), 255);
        const QString stem = name.chopped(QStringLiteral("-framed-12.jpg").size());
        EXPECT_EQ(stem, text.repeated(stem.size() / text.size()));
        EXPECT_GT(stem.toUtf8().size(), 230);
    }
}

} // namespace
} // namespace tarnovel
