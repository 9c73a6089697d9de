#include <gtest/gtest.h>

#include "language/FieldPattern.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

FieldValues taken()
{
    FieldValues values;
    values.name = u"DSCF2588"_s;
    values.number = 7;
    values.count = 120;
    values.taken = QDateTime(QDate(2024, 6, 22), QTime(18, 32, 5), Qt::UTC);
    values.make = u"FUJIFILM"_s;
    values.model = u"X-T5"_s;
    values.lens = u"XF23mmF1.4"_s;
    values.focal = u"23 mm"_s;
    values.aperture = u"f/5.6"_s;
    values.shutter = u"1/500 s"_s;
    values.iso = u"ISO 125"_s;
    values.templateId = u"gear"_s;
    values.size = u"1080"_s;
    values.width = 1080;
    values.height = 1440;
    return values;
}

TEST(FieldPattern, IsFilledFromAPhotosFacts)
{
    const FieldValues values = taken();
    for (const auto &[pattern, text] :
         {std::pair(u"{name}-framed"_s, "DSCF2588-framed"),
          {u"{n} of {count}, {n:1} {n:3} {n:9}"_s, "7 of 120, 7 007 000000007"},
          {u"{date} {date:yyyy-MM-dd HH:mm} {date:MMMM} {time}"_s, "2024.06.22 2024-06-22 18:32 June 18:32"},
          {u"{camera}|{make}|{model}|{lens}"_s, "FUJIFILM X-T5|FUJIFILM|X-T5|XF23mmF1.4"},
          {u"{focal} {aperture} {shutter} {iso}"_s, "23 mm f/5.6 1/500 s ISO 125"},
          {u"{template}-{size}-{width}x{height}"_s, "gear-1080-1080x1440"},
          {u"{{name}} }}{{"_s, "{name} }{"},
          {u"照片 {name} é"_s, "照片 DSCF2588 é"},
          {u""_s, ""}}) {
        const FieldPattern parsed(pattern);
        EXPECT_FALSE(parsed.fault()) << pattern.toStdString();
        EXPECT_EQ(parsed.filled(values).toStdString(), text);
    }
    EXPECT_EQ(FieldPattern(u"[{date}{time}{camera}{lens}{iso}{width}]"_s).filled({}), u"[]"_s);
    for (const QString &name : FieldPattern::names()) {
        EXPECT_FALSE(FieldPattern(u'{' + name + u'}').filled(values).isEmpty()) << name.toStdString();
    }
}

TEST(FieldPattern, SaysACamerasMakeOnce)
{
    const auto camera = [](const QString &make, const QString &model) {
        FieldValues values;
        values.make = make;
        values.model = model;
        return FieldPattern(u"{camera}"_s).filled(values);
    };
    EXPECT_EQ(camera(u"Canon"_s, u"Canon EOS R5"_s), u"Canon EOS R5"_s);
    EXPECT_EQ(camera(u"NIKON CORPORATION"_s, u"NIKON Z 6"_s), u"NIKON Z 6"_s);
    EXPECT_EQ(camera(u"LEICA"_s, u"Q3"_s), u"LEICA Q3"_s);
    EXPECT_EQ(camera(u"Pen"_s, u"Pentax K1"_s), u"Pentax K1"_s);
    EXPECT_EQ(camera(u"Sony"_s, QString()), u"Sony"_s);
    EXPECT_EQ(camera(QString(), u"X100"_s), u"X100"_s);
}

TEST(FieldPattern, SaysWhatIsWrongAndWhere)
{
    using Kind = FieldPattern::Fault::Kind;
    for (const auto &[pattern, kind, position] : {std::tuple(u"{nam}"_s, Kind::UnknownField, 0),
                                                  {u"a {Name}"_s, Kind::UnknownField, 2},
                                                  {u"{name}-{}"_s, Kind::UnknownField, 7},
                                                  {u"{ name}"_s, Kind::UnknownField, 0},
                                                  {u"{n:x}"_s, Kind::BadFormat, 0},
                                                  {u"{n:0}"_s, Kind::BadFormat, 0},
                                                  {u"{n:10}"_s, Kind::BadFormat, 0},
                                                  {u"{date:}"_s, Kind::BadFormat, 0},
                                                  {u"{iso:3}"_s, Kind::BadFormat, 0},
                                                  {u"ab{name"_s, Kind::NotClosed, 2},
                                                  {u"{{}"_s, Kind::NotOpened, 2},
                                                  {u"{name}}"_s, Kind::NotOpened, 6}}) {
        const FieldPattern parsed(pattern);
        ASSERT_TRUE(parsed.fault()) << pattern.toStdString();
        EXPECT_EQ(parsed.fault()->kind, kind) << pattern.toStdString();
        EXPECT_EQ(parsed.fault()->position, position) << pattern.toStdString();
    }
    // What is wrong stays as it was typed, and the rest is filled.
    EXPECT_EQ(FieldPattern(u"{x} {name} {"_s).filled(taken()), u"{x} DSCF2588 {"_s);
}

TEST(FieldPattern, KnowsWhatItNeeds)
{
    EXPECT_FALSE(FieldPattern(u"{name}-{n}-{count}-{size}-{width}-{template} date"_s).usesCamera());
    for (const char *field :
         {"date", "time", "camera", "make", "model", "lens", "focal", "aperture", "shutter", "iso"}) {
        EXPECT_TRUE(FieldPattern(u"{%1}"_s.arg(QLatin1StringView(field))).usesCamera()) << field;
    }
}

} // namespace
} // namespace tarnovel
