#include <array>
#include <limits>

#include <gtest/gtest.h>

#include "base/Cancellation.h"
#include "handwriting/PathSmoother.h"
#include "handwriting/Strokes.h"

namespace tarnovel::test {
namespace {

double offLine(const InkPath &path, double y)
{
    double farthest = 0;
    for (const InkPoint &point : path.points) {
        // Nothing is known of the hand at its first samples.
        if (point.position.x() > path.points.front().position.x() + 3) {
            farthest = std::max(farthest, std::abs(point.position.y() - y));
        }
    }
    return farthest;
}

TEST(Monoline, KeepsItsWidthAtAnySpeedAndDirection)
{
    for (const double width : {1.0, 3.0, 6.0, 24.0}) {
        for (const int samples : {6, 40, 600}) {
            const QImage level =
                rendered({line(InkPen::signature, width, {40, 50.3}, {260, 50.3}, samples)}, {300, 100});
            for (int x = 60; x <= 240; x += 20) {
                EXPECT_NEAR(columnInk(level, x), width, 0.1) << width << " at " << x;
            }
            const QImage slanted =
                rendered({line(InkPen::signature, width, {40, 40}, {240, 240}, samples)}, {300, 300});
            for (int x = 80; x <= 200; x += 20) {
                EXPECT_NEAR(columnInk(slanted, x) / std::numbers::sqrt2, width, 0.3) << width << " at " << x;
            }
        }
    }
}

TEST(Monoline, EndsRound)
{
    const QImage image = rendered({line(InkPen::signature, 20, {50, 50}, {150, 50})}, {200, 100});
    EXPECT_NEAR(totalInk(image), 100 * 20 + std::numbers::pi * 100, 8);
    EXPECT_EQ(qAlpha(image.pixel(41, 50)), 255);
    EXPECT_EQ(qAlpha(image.pixel(41, 41)), 0);
    EXPECT_EQ(qAlpha(image.pixel(38, 50)), 0);
}

TEST(Marker, IsOneEvenLayerHoweverItCrossesItself)
{
    const QImage once = rendered({eight(InkPen::marker, 10, 400)}, {400, 400});
    int darkest = 0;
    for (int y = 0; y < 400; ++y) {
        for (int x = 0; x < 400; ++x) {
            darkest = std::max(darkest, qAlpha(once.pixel(x, y)));
        }
    }
    EXPECT_EQ(qAlpha(once.pixel(200, 200)), darkest);
    EXPECT_EQ(qAlpha(once.pixel(360, 200)), darkest);
    EXPECT_NEAR(darkest, 127, 2);
    const QImage twice =
        rendered({eight(InkPen::marker, 10, 400), eight(InkPen::marker, 10, 400)}, {400, 400});
    EXPECT_NEAR(qAlpha(twice.pixel(360, 200)), 191, 2);
}

TEST(EveryPen, TakesWhatIsNoNumberForAbsent)
{
    for (const InkPen pen : allPens) {
        const InkStroke plain = eight(pen, 8, 300, 60);
        const InkPath expected = InkPath::of(plain);
        for (const double odd :
             {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
              -std::numeric_limits<double>::infinity()}) {
            InkStroke stroke = plain;
            for (InkSample &sample : stroke.samples) {
                sample.pressure = odd;
                sample.tilt = {10, odd};
            }
            const InkPath path = InkPath::of(stroke);
            EXPECT_EQ(path.points, expected.points);
            EXPECT_EQ(path.bounds, expected.bounds);
        }
    }
}

TEST(Fountain, AnswersToPressureSpeedDirectionAndFlick)
{
    const auto inked = [](InkStroke stroke, std::optional<double> pressure) {
        for (InkSample &sample : stroke.samples) {
            sample.pressure = pressure;
        }
        return columnInk(rendered({stroke}, {400, 400}), 200);
    };
    const auto level = [](int samples) { return line(InkPen::fountain, 8, {50, 200}, {350, 200}, samples); };
    EXPECT_GT(inked(level(60), 0.9), 1.4 * inked(level(60), 0.3));
    EXPECT_GT(inked(level(300), {}), 1.3 * inked(level(15), {}));
    // Along the nib it draws its hairline, across it its full width.
    const double along = inked(line(InkPen::fountain, 8, {50, 326}, {350, 74}, 60), 0.5);
    const double across = inked(line(InkPen::fountain, 8, {50, 74}, {350, 326}, 60), 0.5);
    EXPECT_GT(across, 2 * along);

    const InkPath flicked = InkPath::of(level(20));
    EXPECT_LT(flicked.points.back().radius, 0.2 * flicked.points[flicked.points.size() / 2].radius);
    InkStroke rested = level(20);
    for (int i = 0; i < 30; ++i) {
        InkSample still = rested.samples.last();
        still.seconds += 0.01;
        rested.samples.append(still);
    }
    const InkPath blunt = InkPath::of(rested);
    EXPECT_GT(blunt.points.back().radius, 0.8 * blunt.points[blunt.points.size() / 2].radius);
}

TEST(Fountain, SetsDownThinAndDotsBroad)
{
    InkStroke stroke = line(InkPen::fountain, 8, {50, 200}, {350, 200}, 80);
    for (InkSample &sample : stroke.samples) {
        sample.pressure = 0.5;
    }
    const InkPath path = InkPath::of(stroke);
    // Half of the width by 0.65 + 1.05 × 0.5, of which it sets down at 0.62.
    const double whole = 4 * (0.65 + 1.05 * 0.5);
    EXPECT_NEAR(path.points[path.points.size() / 2].radius, whole, 0.01);
    EXPECT_NEAR(path.points.front().radius, 0.62 * whole, 0.01);
    InkStroke dot = line(InkPen::fountain, 8, {100, 100}, {100, 100}, 1);
    dot.samples[0].pressure = 0.5;
    ASSERT_EQ(InkPath::of(dot).points.size(), 1U);
    EXPECT_NEAR(InkPath::of(dot).points[0].radius, 1.4 * whole, 0.01);
}

TEST(Pencil, LeavesLessOnItsSideAndIsNeverBlack)
{
    const auto course = [](QPointF tilt) {
        InkStroke stroke = line(InkPen::pencil, 8, {50, 200}, {350, 200}, 80);
        for (InkSample &sample : stroke.samples) {
            sample.pressure = 1;
            sample.tilt = tilt;
        }
        return stroke;
    };
    const auto middle = [](const InkPath &path) { return path.points[path.points.size() / 2]; };
    const InkPoint upright = middle(InkPath::of(course({0, 0})));
    const InkPoint leant = middle(InkPath::of(course({60, 0})));
    // Two thirds of the way down: by a third less ink, on a band 2.5 × ⅔ of the half width broader.
    EXPECT_NEAR(upright.flow, 1, 0.01);
    EXPECT_NEAR(leant.flow, 1 - 0.5 * 60 / 90, 0.01);
    EXPECT_NEAR(leant.radius - upright.radius, 4 * 2.5 * 60 / 90, 0.1);
    const QImage image = rendered({course({0, 0})}, {400, 400});
    int darkest = 0;
    for (int x = 60; x < 340; ++x) {
        for (int y = 195; y < 206; ++y) {
            darkest = std::max(darkest, qAlpha(image.pixel(x, y)));
        }
    }
    EXPECT_NEAR(darkest, 0.88 * 255, 1);
}

/// Of the darkness of an even band, averaged over squares of `side` pixels.
double variance(const QImage &image, const QRect &band, int side)
{
    double sum = 0;
    double squares = 0;
    int count = 0;
    for (int top = band.top(); top + side <= band.bottom() + 1; top += side) {
        for (int left = band.left(); left + side <= band.right() + 1; left += side) {
            const double mean = totalInk(image.copy(left, top, side, side)) / (side * side);
            sum += mean;
            squares += mean * mean;
            ++count;
        }
    }
    return squares / count - sum / count * sum / count;
}

TEST(Pencil, GrainsDoNotRunTogether)
{
    // A lead as broad as the picture lays its middle on evenly. Means of n grains that know nothing of each
    // other vary an n-th as much as one grain; four pixels of the saved picture are twelve of an export.
    const QImage image = rendered({line(InkPen::pencil, 1000, {-400, 100}, {900, 100}, 200)}, {512, 200});
    const QRect band(40, 80, 400, 40);
    const double one = variance(image, band, 1);
    EXPECT_GT(one, 0.1 * 0.1);
    EXPECT_LT(variance(image, band, 2), 1.35 * one / 4);
    EXPECT_LT(variance(image, band, 4), 1.8 * one / 16);
}

TEST(Pencil, CatchesOnPaperThatLiesStill)
{
    const InkStroke stroke = line(InkPen::pencil, 12, {20, 50}, {280, 50}, 20);
    const QImage image = rendered({stroke}, {300, 100});
    int bare = 0;
    int dark = 0;
    for (int x = 40; x < 260; ++x) {
        for (int y = 47; y < 53; ++y) {
            bare += qAlpha(image.pixel(x, y)) < 96 ? 1 : 0;
            dark += qAlpha(image.pixel(x, y)) > 140 ? 1 : 0;
        }
    }
    EXPECT_GT(bare, 60);
    EXPECT_GT(dark, 60);
    // The same place of the paper has the same tooth under another stroke; another place has another one.
    const QImage again = rendered({line(InkPen::pencil, 12, {20, 50}, {280, 50}, 20)}, {300, 100});
    EXPECT_EQ(again, image);
    const QImage beside = rendered({line(InkPen::pencil, 12, {27, 50}, {287, 50}, 20)}, {300, 100});
    EXPECT_NE(beside.copy(107, 40, 100, 20), image.copy(100, 40, 100, 20));

    InkStroke leaning = stroke;
    for (InkSample &sample : leaning.samples) {
        sample.tilt = {60, 0};
    }
    // At 60 of 90 degrees the lead's side is 2.5 × 2 ÷ 3 half widths broader, whatever the force adds to
    // both.
    EXPECT_NEAR(InkPath::of(leaning).bounds.height() - InkPath::of(stroke).bounds.height(), 12 * 2.5 * 2 / 3,
                0.05);
}

TEST(Rendering, GivesTheSameBytesForAnyPartAtAnyScale)
{
    for (const InkPen pen : allPens) {
        const InkDrawing drawing = drawingOf({eight(pen, 9, 300), line(pen, 5, {10, 10}, {290, 250})});
        for (const double scale : {0.5, 1.0, 2.0, 3.7}) {
            const QImage whole = InkRenderer::render(drawing, {0, 0, 300, 300}, scale);
            EXPECT_EQ(whole, InkRenderer::render(drawing, {0, 0, 300, 300}, scale));
            const QRectF part(120, 80, 100, 140);
            EXPECT_EQ(InkRenderer::render(drawing, part, scale),
                      whole.copy({(part.topLeft() * scale).toPoint(), (part.size() * scale).toSize()}));
        }
    }
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(InkRenderer::render(drawingOf({eight(InkPen::marker, 9, 300)}), {0, 0, 300, 300}, 1,
                                     stop.get_token()),
                 OperationCancelled);
}

TEST(Smoothing, CalmsASlowHandAndFollowsAFastOne)
{
    InkStroke trembling = line(InkPen::signature, 4, {10, 50}, {60, 50}, 200);
    for (qsizetype i = 0; i < trembling.samples.size(); ++i) {
        trembling.samples[i].position.ry() += i % 2 == 0 ? 1 : -1;
    }
    trembling.samples.last().position.setY(50);
    EXPECT_LT(offLine(InkPath::of(trembling), 50), 0.6);

    // The ink never trails the pen, and a fast curve keeps its size.
    for (const InkPen pen : allPens) {
        const InkStroke circle = strokeAlong(pen, 4, 40, [](double t) {
            const double turn = 2 * std::numbers::pi * t;
            return QPointF(200 + 150 * std::cos(turn), 200 + 150 * std::sin(turn));
        });
        InkPathBuilder path(circle);
        for (const InkSample &sample : circle.samples) {
            path.append(sample);
            EXPECT_LT(std::hypot(path.points().back().position.x() - sample.position.x(),
                                 path.points().back().position.y() - sample.position.y()),
                      0.6);
        }
        for (const InkPoint &point : path.points()) {
            EXPECT_NEAR(std::hypot(point.position.x() - 200, point.position.y() - 200), 150, 8);
        }
    }
}

/// The mean turn of a course, in degrees, from one step of 3 units to the next.
double meanTurn(const std::vector<InkPoint> &points)
{
    std::vector<QPointF> steps{points.front().position};
    for (const InkPoint &point : points) {
        const QPointF way = point.position - steps.back();
        const double length = std::hypot(way.x(), way.y());
        for (int i = 1; i <= static_cast<int>(length / 3); ++i) {
            steps.push_back(steps.back() + 3 / length * way);
        }
    }
    double sum = 0;
    for (size_t i = 2; i < steps.size(); ++i) {
        const QPointF before = steps[i - 1] - steps[i - 2];
        const QPointF after = steps[i] - steps[i - 1];
        sum += std::abs(std::remainder(std::atan2(after.y(), after.x()) - std::atan2(before.y(), before.x()),
                                       2 * std::numbers::pi));
    }
    return sum / static_cast<double>(steps.size() - 2) * 180 / std::numbers::pi;
}

/// As a mouse reports a stroke: whole pixels, and no pressure.
InkStroke byMouse(InkStroke stroke)
{
    for (InkSample &sample : stroke.samples) {
        sample.position = sample.position.toPoint();
    }
    return stroke;
}

TEST(Smoothing, TakesTheStairsOutOfWhatAMouseReports)
{
    // Four periods of a wave whose true mean turn is that of its formula.
    const auto wave = [](double t) {
        return QPointF(40 + 720 * t, 150 + 60 * std::sin(8 * std::numbers::pi * t));
    };
    for (const int samples : {150, 300, 600}) { // at 1,000, 500 and 250 px a second
        const InkStroke fine = strokeAlong(InkPen::signature, 6, samples, wave);
        const double truth = meanTurn(InkPath::of(strokeAlong(InkPen::signature, 6, 5000, wave)).points);
        const InkPath path = InkPath::of(byMouse(fine));
        EXPECT_LT(meanTurn(path.points), truth + 1.2) << samples;
        for (const InkPoint &point : path.points) {
            const double t = (point.position.x() - 40) / 720;
            EXPECT_NEAR(point.position.y(), wave(t).y(), 2.6) << samples; // steep parts move it most
        }
    }
}

TEST(Smoothing, KeepsTheCornersOfLetters)
{
    // An N, a V and a Z: the pen turns on the spot.
    for (const std::vector<QPointF> &letter :
         {std::vector<QPointF>{{60, 200}, {60, 80}, {140, 200}, {140, 80}},
          {{60, 80}, {100, 200}, {140, 80}},
          {{60, 80}, {150, 80}, {60, 200}, {150, 200}}}) {
        for (const double step : {1.2, 2.5, 4.0}) {
            InkStroke stroke;
            for (size_t i = 0; i + 1 < letter.size(); ++i) {
                const QPointF way = letter[i + 1] - letter[i];
                const int count = static_cast<int>(std::hypot(way.x(), way.y()) / step);
                for (int k = i == 0 ? 0 : 1; k <= count; ++k) {
                    stroke.samples.append(
                        {letter[i] + way * k / count, 0.008 * static_cast<double>(stroke.samples.size())});
                }
            }
            const InkPath path = InkPath::of(byMouse(stroke));
            for (const QPointF &corner : letter) {
                double nearest = 1e9;
                for (const InkPoint &point : path.points) {
                    nearest = std::min(nearest, std::hypot(point.position.x() - corner.x(),
                                                           point.position.y() - corner.y()));
                }
                EXPECT_LE(nearest, 1.5) << step << " at " << corner.x() << ' ' << corner.y();
            }
        }
    }
}

TEST(Smoothing, KeepsLittleOfAPointerThatRests)
{
    PathSmoother smoother(1);
    QPointF place;
    size_t most = 0;
    for (int i = 0; i < 40; ++i, place += QPointF(1, 0.5)) {
        smoother.append({place}, place, true);
        smoother.takeFinal();
        most = std::max(most, smoother.kept());
    }
    const std::vector<CourseNode> before = smoother.rest();
    for (int i = 0; i < 5000; ++i) {
        // The creep of a calmed course, then the shiver of a hand.
        const QPointF calm = place + (i < 2000 ? QPointF(0.3 * i / 2000, 0) : QPointF(0.01 * (i % 2), 0));
        smoother.append({place}, calm, false);
        smoother.takeFinal();
        most = std::max(most, smoother.kept());
    }
    EXPECT_LT(most, 700U);
    ASSERT_FALSE(before.empty());
}

TEST(Smoothing, ChangesNothingThatIsSettled)
{
    const InkStroke stroke = byMouse(eight(InkPen::signature, 6, 400, 300));
    InkPathBuilder path(stroke);
    std::vector<InkPoint> settled;
    for (const InkSample &sample : stroke.samples) {
        path.append(sample);
        ASSERT_GE(path.settled(), settled.size());
        ASSERT_TRUE(std::equal(settled.begin(), settled.end(), path.points().begin()));
        settled.assign(path.points().begin(), path.points().begin() + static_cast<ptrdiff_t>(path.settled()));
        EXPECT_EQ(path.points().back().position, sample.position); // no lag
        double behind = 0;
        for (size_t i = std::max<size_t>(path.settled(), 1); i < path.points().size(); ++i) {
            const QPointF way = path.points()[i].position - path.points()[i - 1].position;
            behind += std::hypot(way.x(), way.y());
        }
        EXPECT_LT(behind, 45);
    }
    EXPECT_GT(settled.size(), 200U);
}

TEST(Samples, MayComeFastSingleStoppedOrWithoutTime)
{
    for (const InkPen pen : allPens) {
        const double width = pen == InkPen::marker ? 4 : 10;
        const QImage dot = rendered({line(pen, width, {50, 50}, {50, 50}, 1)}, {100, 100});
        EXPECT_GT(qAlpha(dot.pixel(50, 50)), 60);
        EXPECT_GT(totalInk(dot), 15);
        EXPECT_LT(totalInk(dot), 90);

        // Four reports of a very fast hand make one unbroken line.
        const QImage fast = rendered({line(pen, width, {50, 50}, {1150, 50}, 4)}, {1200, 100});
        for (int x = 60; x < 1100; ++x) {
            EXPECT_GT(columnInk(fast, x), 0.4) << x;
        }

        // A pen that stops leaves no blot, even after a minute.
        InkStroke stopped = line(pen, width, {50, 50}, {250, 50}, 50);
        for (int i = 0; i < 500; ++i) {
            stopped.samples.append({{250, 50}, 60.0 + i * 0.004});
        }
        const QRectF bounds = InkPath::of(stopped).bounds;
        EXPECT_LT(bounds.right(), 250 + 1.2 * tipDiameter(pen, width));

        for (const double pace : {0.0, -0.008}) {
            InkStroke timeless = line(pen, width, {50, 50}, {250, 50}, 50);
            for (qsizetype i = 0; i < timeless.samples.size(); ++i) {
                timeless.samples[i].seconds = 5 + pace * static_cast<double>(i);
            }
            const InkPath path = InkPath::of(timeless);
            EXPECT_LT(offLine(path, 50), 0.01);
            EXPECT_EQ(path.points.back().position, QPointF(250, 50));
        }
    }
    InkStroke broken = line(InkPen::fountain, 6, {50, 50}, {250, 50}, 50);
    broken.samples[7].position.setX(std::numeric_limits<double>::quiet_NaN());
    broken.samples[9].position.setY(std::numeric_limits<double>::infinity());
    EXPECT_LT(InkPath::of(broken).bounds.height(), 12);
    EXPECT_TRUE(InkPath::of({}).points.empty());
}

TEST(Samples, TenThousandStayWhereTheyWereSettled)
{
    const InkStroke spiral = strokeAlong(InkPen::pencil, 6, 10'000, [](double t) {
        const double turn = 80 * std::numbers::pi * t;
        return QPointF(500, 500) + (50 + 400 * t) * QPointF(std::cos(turn), std::sin(turn));
    });
    InkPathBuilder path(spiral);
    std::vector<InkPoint> early;
    size_t tail = 0;
    for (qsizetype i = 0; i < spiral.samples.size(); ++i) {
        path.append(spiral.samples.at(i));
        tail = std::max(tail, path.points().size() - path.settled());
        if (i == 5000) {
            early.assign(path.points().begin(),
                         path.points().begin() + static_cast<ptrdiff_t>(path.settled()));
        }
    }
    path.finish();
    ASSERT_GT(early.size(), 4000U);
    EXPECT_TRUE(std::equal(early.begin(), early.end(), path.points().begin()));
    EXPECT_LT(tail, 40U);
    EXPECT_EQ(path.points(), InkPath::of(spiral).points);
}

} // namespace
} // namespace tarnovel::test
