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

TEST(ExportNames, FollowAPattern)
{
    const auto name = [](const QString &pattern, FieldValues values, int attempt = 0) {
        return ExportNames::fileName(FieldPattern(pattern), values, u"jpg"_s, attempt).toStdString();
    };
    FieldValues values;
    values.name = u"a/b"_s;
    values.aperture = u"f/5.6"_s;
    EXPECT_EQ(name(u"{name} {aperture}"_s, values), "a_b f_5.6.jpg");
    EXPECT_EQ(name(u"../x\\{{1}}:"_s, values, 2), ".._x_{1}_-3.jpg");
    EXPECT_EQ(name(u"{iso}"_s, values), "Photo.jpg");
    EXPECT_EQ(name(u"{name}-{name}"_s, {}), "Photo-Photo.jpg");
    // The photo's name gives way before what stands around it.
    values.name = QString(120, u'照');
    values.make = QString(30, u'm');
    const std::string twice = name(u"{name}{make}{name}-end"_s, values, 1);
    EXPECT_LE(twice.size(), 255u);
    EXPECT_GT(twice.size(), 245u);
    EXPECT_TRUE(QString::fromStdString(twice).endsWith(u"-end-2.jpg"_s)) << twice;
    EXPECT_EQ(name(QString(300, u'x'), values, 1), (QString(249, u'x') + u"-2.jpg"_s).toStdString());
}

TEST(ExportNames, OfABatchDependOnItsOrderAlone)
{
    ExportNames::Plan plan(FieldPattern(u"{name}"_s), u"jpg"_s);
    const auto next = [&plan](const QString &name) {
        FieldValues values;
        values.name = name;
        return plan.name(values, plan.attempt(values)).toStdString();
    };
    EXPECT_EQ(next(u"a"_s), "a.jpg");
    EXPECT_EQ(next(u"b"_s), "b.jpg");
    EXPECT_EQ(next(u"a"_s), "a-2.jpg");
    EXPECT_EQ(next(u"a"_s), "a-3.jpg");
    EXPECT_EQ(next(u"a-2"_s), "a-2-2.jpg");
    EXPECT_EQ(next(u"a/"_s), "a_.jpg");
    EXPECT_EQ(next(u"a:"_s), "a_-2.jpg");
    EXPECT_EQ(next(u"a"_s), "a-4.jpg");
}

} // namespace
} // namespace tarnovel
