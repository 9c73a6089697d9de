#include <gtest/gtest.h>

#include "pipeline/CameraTexts.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

TEST(CameraTexts, WriteTheExposureInOrder)
{
    CaptureMetadata metadata;
    metadata.make = u"  FUJIFILM \n"_s;
    metadata.model = u"X\u0007-T5\u001b"_s;
    metadata.focalLengthMm = 34.5; // a tie goes to the even side, as everywhere in C
    metadata.fNumber = 2.8;
    metadata.exposureSeconds = 0.004;
    metadata.iso = 400;
    const CameraTexts texts = CameraTexts::from(metadata);
    EXPECT_EQ(texts.brand, u"FUJIFILM"_s);
    EXPECT_EQ(texts.model, u"X-T5"_s);
    EXPECT_EQ(texts.exif, u"34 mm · f/2.8 · 1/250 s · ISO 400"_s);
    EXPECT_EQ(CameraTexts::from({}).exif, QString());
    metadata.fNumber = {};
    metadata.exposureSeconds = 0;
    EXPECT_EQ(CameraTexts::from(metadata).exif, u"34 mm · ISO 400"_s);
}

TEST(CameraTexts, WriteExposureTimesAsCamerasDo)
{
    const auto time = [](double seconds) {
        CaptureMetadata metadata;
        metadata.exposureSeconds = seconds;
        return CameraTexts::from(metadata).exif;
    };
    EXPECT_EQ(time(1.0 / 3), u"1/3 s"_s);
    EXPECT_EQ(time(0.0004), u"1/2500 s"_s);
    EXPECT_EQ(time(0.4), u"1/3 s"_s); // 2.5 rounds away from zero
    EXPECT_EQ(time(1), u"1.0 s"_s);
    EXPECT_EQ(time(30), u"30.0 s"_s);
    EXPECT_EQ(time(-1), QString());
}

TEST(CameraTexts, ShowTheCamerasOwnDate)
{
    const auto date = [](const QString &original) {
        CaptureMetadata metadata;
        metadata.originalDate = original;
        return CameraTexts::from(metadata).date;
    };
    EXPECT_EQ(date(u"2024:05:01 23:30:00"_s), u"2024.05.01"_s);
    // An hour that clocks in Paris skip is still a date.
    qputenv("TZ", "Europe/Paris");
    tzset();
    EXPECT_EQ(date(u"2024:03:31 02:30:00"_s), u"2024.03.31"_s);
    qputenv("TZ", "UTC");
    tzset();
    for (const QString &wrong : {u"2024:13:01 10:00:00"_s, u"2024-05-01 10:00:00"_s, u"2024:05:01"_s,
                                 u"0000:00:00 00:00:00"_s, u""_s}) {
        EXPECT_EQ(date(wrong), QString()) << wrong.toStdString();
    }
}

} // namespace
} // namespace tarnovel
