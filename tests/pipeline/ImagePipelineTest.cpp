#include <atomic>
#include <cmath>
#include <numbers>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLoggingCategory>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "base/Cancellation.h"
#include "base/FileError.h"
#include "pipeline/ImagePipeline.h"
#include "pipeline/PhotoPalette.h"
#include "pipeline/PipelineError.h"
#include "pipeline/PlacedPhoto.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

/// A library with photos and the service that reads them.
class Pipeline : public testing::Test {
protected:
    QTemporaryDir m_folder;
    ImagePipeline m_pipeline{m_folder.path(), m_folder.filePath(u"temporary"_s)};

    QString write(const QString &name, const QImage &image) const
    {
        EXPECT_TRUE(image.save(m_folder.filePath(name), name.endsWith(u"png"_s) ? "PNG" : "JPEG", 95));
        return name;
    }

    static QImage gradient(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                image.setPixel(x, y, qRgb(255 * x / size.width(), 255 * y / size.height(), 128));
            }
        }
        return image;
    }

    PhotoItem item(const QString &file) { return m_pipeline.inspect({file}).result(); }

    /// The failure of an export, or none.
    std::optional<PipelineError> failure(const PhotoItem &photo, const ExportOptions &options)
    {
        try {
            m_pipeline.exportPhoto(photo, options).result();
        } catch (const PipelineFailure &failure) {
            return failure.error();
        }
        return {};
    }
};

using Palette = Pipeline;
using Inspecting = Pipeline;
using Exporting = Pipeline;
using Serving = Pipeline;

QImage plain(const QColor &color, QSize size = {64, 64})
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

TEST_F(Palette, FindsUpToThreeClearlyDifferentColors)
{
    EXPECT_EQ(PhotoPalette::extract(plain(Qt::transparent)), QList<Ink>());
    EXPECT_EQ(PhotoPalette::extract(plain(QColor(255, 0, 0, 200))), QList<Ink>());
    const QList<Ink> single = PhotoPalette::extract(plain(QColor(200, 100, 50)));
    ASSERT_EQ(single.size(), 1);
    EXPECT_NEAR(single.first().g, 100.0 / 255, 0.005);

    // Columns: half blue, a quarter red, the rest two greens that count as one, and a sliver of white.
    QImage columns(96, 96, QImage::Format_RGB32);
    for (int x = 0; x < 96; ++x) {
        const QColor color = x < 48   ? QColor(20, 40, 200)
                             : x < 72 ? QColor(220, 30, 30)
                             : x < 84 ? QColor(30, 140, 30)
                             : x < 92 ? QColor(30, 150, 30)
                                      : QColor(250, 250, 250);
        for (int y = 0; y < 96; ++y) {
            columns.setPixelColor(x, y, color);
        }
    }
    const QList<Ink> found = PhotoPalette::extract(columns);
    ASSERT_EQ(found.size(), 3);
    EXPECT_GT(found[0].b, 0.7);
    EXPECT_GT(found[1].r, 0.8);
    EXPECT_GT(found[2].g, 0.5);
}

TEST_F(Palette, IsRememberedByFileName)
{
    write(u"a.png"_s, plain(Qt::red));
    const QList<Ink> first = m_pipeline.primaryColors(u"a.png"_s).result();
    write(u"a.png"_s, plain(Qt::blue));
    EXPECT_EQ(m_pipeline.primaryColors(u"a.png"_s).result(), first);
    for (int i = 0; i < 100; ++i) {
        const QString name = u"%1.png"_s.arg(i);
        write(name, plain(Qt::green, {4, 4}));
        m_pipeline.primaryColors(name).waitForFinished();
    }
    EXPECT_NE(m_pipeline.primaryColors(u"a.png"_s).result(), first);
    EXPECT_THROW(m_pipeline.primaryColors(u"none.png"_s).result(), PipelineFailure);
}

TEST_F(Inspecting, MakesAPhotoWithDefaultSettings)
{
    write(u"IMG.0042.png"_s, gradient({30, 20}));
    const PhotoItem photo = item(u"IMG.0042.png"_s);
    EXPECT_EQ(photo.name, u"IMG.0042"_s);
    EXPECT_EQ(photo.size(), QSizeF(30, 20));
    EXPECT_EQ(photo.settings, FrameSettings());
    EXPECT_FALSE(photo.id.isNull());
    QFile broken(m_folder.filePath(u"broken.jpg"_s));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    EXPECT_THROW(item(u"broken.jpg"_s), PipelineFailure);
}

TEST_F(Exporting, ChoosesTheCanvasByTheOptions)
{
    PhotoItem photo;
    photo.width = 12000;
    photo.height = 9000;
    const auto canvas = [&photo](ExportOptions options) { return outputCanvas(photo, options); };
    EXPECT_EQ(canvas({.longEdge = 300}), QSize(540, 720));
    EXPECT_EQ(canvas({.longEdge = 1080}), QSize(1080, 1440));
    photo.settings.preset = CanvasPreset::instagram;
    EXPECT_EQ(canvas({.longEdge = 1080}), QSize(1080, 1350));
    photo.settings.preset = CanvasPreset::original;
    EXPECT_EQ(canvas({.longEdge = 1080}), QSize(1440, 1080));
    EXPECT_THROW(canvas({.fullResolution = true}), PipelineFailure);
    photo.settings.preset = CanvasPreset::custom;
    photo.settings.customWidth = 1;
    photo.settings.customHeight = 5;
    EXPECT_EQ(canvas({.longEdge = 10'000}), QSize(1638, 8192));
    // 6 : 1 is held to 5 : 1; 20,000,000 pixels pass, 28,800,000 do not.
    photo.settings.preset = CanvasPreset::original;
    photo.width = 10'000;
    photo.height = 1600;
    EXPECT_EQ(canvas({.fullResolution = true}), QSize(10'000, 2000));
    photo.width = 12'000;
    EXPECT_THROW(canvas({.fullResolution = true}), PipelineFailure);
}

TEST_F(Exporting, WritesWholeFilesUnderNewNames)
{
    write(u"a.jpg"_s, gradient({400, 300}));
    const PhotoItem photo = item(u"a.jpg"_s);
    const ExportedFile first = m_pipeline.exportPhoto(photo, {.longEdge = 720}).result();
    const ExportedFile second =
        m_pipeline.exportPhoto(photo, {.longEdge = 720, .png = true, .maxMB = 0.0001}).result();
    EXPECT_TRUE(QRegularExpression(u"/Exports/Kesmar-[0-9A-F]{8}\\.jpg$"_s).match(first.path).hasMatch());
    EXPECT_TRUE(second.path.endsWith(u".png"_s));
    EXPECT_EQ(QImage(first.path).size(), QSize(540, 720));
    EXPECT_EQ(first.bytes, QFileInfo(first.path).size());
    EXPECT_EQ(QDir(m_folder.filePath(u"temporary/Exports"_s)).entryList(QDir::Files | QDir::Hidden).size(),
              2);
}

TEST_F(Exporting, FailsByNameAndLeavesNothing)
{
    write(u"a.jpg"_s, gradient({400, 300}));
    PhotoItem photo = item(u"a.jpg"_s);
    EXPECT_EQ(failure(photo, {.maxMB = 0.001}), PipelineError::FileSize);
    photo.settings.handwritingFile = u"none.png"_s;
    EXPECT_EQ(failure(photo, {}), PipelineError::Unreadable);
    photo.file = u"none.jpg"_s;
    photo.settings.handwritingFile = {};
    EXPECT_EQ(failure(photo, {}), PipelineError::Unreadable);
    photo.settings.preset = CanvasPreset::square;
    EXPECT_EQ(failure(photo, {.longEdge = 8192}), PipelineError::TooLarge);
    EXPECT_EQ(QDir(m_folder.filePath(u"temporary/Exports"_s)).entryList(QDir::Files | QDir::Hidden).size(),
              0);

    QFile blocked(m_folder.filePath(u"blocked"_s));
    ASSERT_TRUE(blocked.open(QIODevice::WriteOnly));
    ImagePipeline pipeline(m_folder.path(), blocked.fileName());
    EXPECT_THROW(pipeline.exportPhoto(item(u"a.jpg"_s), {}).result(), FileError);
}

TEST_F(Exporting, MatchesTheSameFrameDrawnSmall)
{
    write(u"a.png"_s, gradient({1501, 997}));
    PhotoItem photo = item(u"a.png"_s);
    photo.settings.background = Backdrop::blur;
    for (const FrameStyle style : {FrameStyle::simple, FrameStyle::cinema}) {
        photo.settings.style = style;
        const QImage small = m_pipeline.render(photo, {300, 400}).result();
        const QImage large = m_pipeline.render(photo, {1200, 1600}).result();
        int worst = 0;
        for (int y = 8; y < 392; y += 3) {
            for (int x = 8; x < 292; x += 3) {
                const QColor a = small.pixelColor(x, y);
                const QColor b = large.pixelColor(4 * x + 2, 4 * y + 2);
                const bool flat =
                    std::abs(small.pixelColor(x + 2, y).red() - small.pixelColor(x - 2, y).red()) < 12 &&
                    std::abs(small.pixelColor(x, y + 2).green() - small.pixelColor(x, y - 2).green()) < 12;
                if (flat) {
                    worst = std::max({worst, std::abs(a.red() - b.red()), std::abs(a.green() - b.green())});
                }
            }
        }
        EXPECT_LE(worst, 4);
    }
}

TEST_F(Exporting, BlursThePhotoBehindIt)
{
    QImage halves(500, 500, QImage::Format_RGB32);
    halves.fill(Qt::black);
    QPainter(&halves).fillRect(250, 0, 250, 500, Qt::white);
    write(u"a.png"_s, halves);
    PhotoItem photo = item(u"a.png"_s);
    photo.settings.preset = CanvasPreset::square;
    photo.settings.scale = 0.1;
    photo.settings.border = 0;
    photo.settings.background = Backdrop::blur;
    const ExportedFile made = m_pipeline.exportPhoto(photo, {.longEdge = 1000, .png = true}).result();
    const QImage canvas(made.path);
    for (const int x : {300, 420, 460, 500, 540, 580, 700}) {
        // An edge blurred at 500 pixels by 22 of them: 127.5 (1 + erf(d ÷ (22 √2))).
        const double distance = (x + 0.5 - 500) / 2;
        const double expected = 127.5 * (1 + std::erf(distance / (22 * std::numbers::sqrt2)));
        EXPECT_NEAR(canvas.pixelColor(x, 100).red(), expected, 3) << x;
    }
    // No steps: over 24 pixels of a slope the mean of blocks rises each time.
    double before = -1;
    for (int x = 476; x < 524; x += 8) {
        double sum = 0;
        for (int i = 0; i < 64; ++i) {
            sum += canvas.pixelColor(x + i % 8, 800 + i / 8).red();
        }
        EXPECT_GT(sum / 64, before + 2);
        before = sum / 64;
    }
}

TEST_F(Exporting, DrawsLogoAndSignatureAtTheirSizeAndPlace)
{
    write(u"photo.png"_s, plain(Qt::white));
    write(u"red.png"_s, plain(Qt::red, {300, 100}));
    write(u"blue.png"_s, plain(Qt::blue, {640, 320}));
    PhotoItem photo = item(u"photo.png"_s);
    photo.settings.preset = CanvasPreset::square;
    TextLayer &logo = *photo.settings.layer(u"watermark"_s);
    logo.visible = true;
    logo.imageFile = u"red.png"_s;
    logo.imageAspect = 3;
    logo.size = 0.03;
    logo.x = 0.25;
    logo.y = 0.2;
    photo.settings.handwritingFile = u"blue.png"_s;
    photo.settings.handwritingX = 0.7;
    photo.settings.handwritingY = 0.6;
    photo.settings.handwritingWidth = 0.2;
    const QImage canvas(m_pipeline.exportPhoto(photo, {.longEdge = 1000, .png = true}).result().path);
    const auto extent = [&canvas](const QColor &color) {
        QRect found;
        for (int y = 0; y < canvas.height(); ++y) {
            for (int x = 0; x < canvas.width(); ++x) {
                found |= canvas.pixelColor(x, y) == color ? QRect(x, y, 1, 1) : QRect();
            }
        }
        return found;
    };
    // 0.03 × 1000 × 5 = 150 by 50 around (250, 200); 200 by 100 around (700, 600): edges sharp to the pixel.
    EXPECT_EQ(extent(Qt::red), QRect(175, 175, 150, 50));
    EXPECT_EQ(extent(Qt::blue), QRect(600, 550, 200, 100));
}

TEST_F(Exporting, KeepsFineLinesOfLogoAndSignature)
{
    const auto striped = [](QSize size, int width) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                image.setPixel(x, y, x / width % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
            }
        }
        return image;
    };
    write(u"photo.png"_s, plain(Qt::white));
    write(u"logo.png"_s, striped({300, 100}, 4));
    write(u"signature.png"_s, striped({640, 320}, 8));
    PhotoItem photo = item(u"photo.png"_s);
    photo.settings.preset = CanvasPreset::square;
    TextLayer &logo = *photo.settings.layer(u"watermark"_s);
    logo.visible = true;
    logo.imageFile = u"logo.png"_s;
    logo.imageAspect = 3;
    logo.size = 0.03;
    logo.x = 0.25;
    logo.y = 0.2;
    photo.settings.handwritingFile = u"signature.png"_s;
    photo.settings.handwritingX = 0.7;
    photo.settings.handwritingY = 0.6;
    photo.settings.handwritingWidth = 0.2;
    const QImage canvas(m_pipeline.exportPhoto(photo, {.longEdge = 1000, .png = true}).result().path);
    const auto alternations = [&canvas](QPoint from, int count) {
        int found = 0;
        for (int x = from.x() + 1; x < from.x() + count; ++x) {
            found += (canvas.pixelColor(x - 1, from.y()).red() < 128) !=
                             (canvas.pixelColor(x, from.y()).red() < 128)
                         ? 1
                         : 0;
        }
        return found;
    };
    // Lines of 4 × 150 ÷ 300 = 2 pixels over 150, and of 8 × 200 ÷ 640 = 2.5 pixels over 200.
    EXPECT_NEAR(alternations({175, 200}, 150), 150 / 2 - 1, 1);
    EXPECT_NEAR(alternations({600, 600}, 200), 200 / 2.5 - 1, 1);
}

TEST_F(Serving, KeepsTransparencyInPicturesFromMemory)
{
    QImage image(80, 60, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter(&image).fillRect(40, 0, 40, 60, QColor(200, 100, 0));
    const QImage scaled = scaledPicture(image, {200, 150});
    ASSERT_TRUE(scaled.hasAlphaChannel());
    EXPECT_EQ(qAlpha(scaled.pixel(20, 70)), 0);
    EXPECT_EQ(scaled.pixelColor(180, 70), QColor(200, 100, 0));
    const PhotoImage placed =
        m_pipeline.resamplePlaced(image, {{0, 0, 40, 30}, {0, 0, 40, 30}}, {40, 30}).result();
    EXPECT_EQ(qAlpha(placed.image.pixel(3, 15)), 0);
    EXPECT_EQ(qAlpha(placed.image.pixel(36, 15)), 255);
}

TEST_F(Serving, KeepsTheOrderEvenForThoseWhoWait)
{
    const QString large = write(u"large.png"_s, gradient({3000, 2000}));
    const QString small = write(u"small.png"_s, gradient({30, 20}));
    const QFuture<QImage> first = m_pipeline.read(large, 3000);
    const QFuture<QImage> second = m_pipeline.read(small, 30);
    EXPECT_EQ(second.result().size(), QSize(30, 20));
    EXPECT_TRUE(first.isFinished()); // nobody who waits does the work himself
}

TEST_F(Serving, PlacesDecodedPhotosLikeFiles)
{
    const QString file = write(u"photo.png"_s, gradient({300, 200}));
    const PhotoPlacement placement{{-40.5, 10.25, 150, 100}, {0, 20, 80, 60.5}};
    const PhotoImage fromFile = m_pipeline.readPlaced(file, placement, {100, 100}).result();
    const QImage decoded = m_pipeline.read(file, 300).result();
    const PhotoImage fromMemory = m_pipeline.resamplePlaced(decoded, placement, {100, 100}).result();
    EXPECT_EQ(fromMemory.extent, fromFile.extent);
    ASSERT_EQ(fromMemory.image.size(), QSize(80, 61));
    ASSERT_EQ(fromFile.image.size(), QSize(80, 61));
    for (const QPoint at : {QPoint(0, 0), QPoint(79, 60), QPoint(33, 17)}) {
        EXPECT_NEAR(qRed(fromMemory.image.pixel(at)), qRed(fromFile.image.pixel(at)), 1);
        EXPECT_NEAR(qGreen(fromMemory.image.pixel(at)), qGreen(fromFile.image.pixel(at)), 1);
    }
    EXPECT_TRUE(m_pipeline.resamplePlaced(decoded, {{0, 0, 9, 9}, {20, 20, 9, 9}}, {100, 100})
                    .result()
                    .image.isNull());
}

/// Counts the decodings of its life.
class Decodings {
public:
    Decodings()
    {
        s_count = 0;
        QLoggingCategory::setFilterRules(u"tarnovel.decoder.debug=true"_s);
        m_before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
            s_count += message.startsWith(u"decoding"_s) ? 1 : 0;
        });
    }
    ~Decodings()
    {
        qInstallMessageHandler(m_before);
        QLoggingCategory::setFilterRules({});
    }
    Decodings(const Decodings &) = delete;
    Decodings &operator=(const Decodings &) = delete;
    int count() const { return s_count; }

private:
    static inline std::atomic<int> s_count = 0;
    QtMessageHandler m_before;
};

TEST_F(Serving, DecodesAPhotoOnce)
{
    write(u"a.jpg"_s, gradient({1800, 1200}));
    {
        const Decodings decodings;
        PhotoItem photo = item(u"a.jpg"_s);
        const QImage preview = m_pipeline.read(u"a.jpg"_s, 1400).result();
        EXPECT_EQ(preview.size(), QSize(1400, 933));
        for (const int pixels : {800, 500, 400, 120}) {
            EXPECT_EQ(m_pipeline.read(u"a.jpg"_s, pixels).result().width(), pixels);
        }
        m_pipeline.primaryColors(u"a.jpg"_s).waitForFinished();
        EXPECT_EQ(decodings.count(), 1) << "from its import to the window that shows it";
    }
    const Decodings decodings;
    PhotoItem photo = item(u"a.jpg"_s);
    photo.settings.background = Backdrop::blur;
    m_pipeline.exportPhoto(photo, {}).result();
    EXPECT_EQ(decodings.count(), 1) << "with its blurred backdrop";
}

TEST_F(Serving, KeepsThumbnailsFromStartToStart)
{
    const QString thumbnails = m_folder.filePath(u"thumbnails"_s);
    const QDir folder(thumbnails);
    write(u"a.jpg"_s, gradient({1800, 1200}));
    const QString path = m_folder.filePath(u"a.jpg"_s);
    const auto start = [&] {
        return std::make_unique<ImagePipeline>(m_folder.path(), m_folder.filePath(u"t"_s),
                                               PipelineUse::Editor, thumbnails);
    };
    const QDateTime changed(QDate(2026, 5, 4), QTime(12, 0));
    QFile photo(path);
    ASSERT_TRUE(photo.open(QIODevice::ReadWrite) &&
                photo.setFileTime(changed, QFileDevice::FileModificationTime));
    const QImage first = start()->read(u"a.jpg"_s, 400).result();
    ASSERT_EQ(folder.entryList(QDir::Files).size(), 1);
    const QFileInfo kept(folder.filePath(folder.entryList(QDir::Files).first()));
    EXPECT_FALSE(kept.permission(QFile::ReadGroup) || kept.permission(QFile::ReadOther));

    // Where the photo cannot be decoded any more, only the thumbnail can have been read.
    ASSERT_TRUE(photo.seek(photo.size() / 2));
    photo.write(QByteArray(2000, '\xff'));
    photo.flush();
    ASSERT_TRUE(photo.setFileTime(changed, QFileDevice::FileModificationTime));
    photo.close();
    EXPECT_EQ(start()->read(u"a.jpg"_s, 400).result(), first);
    EXPECT_THROW(start()->read(u"a.jpg"_s, 1400).result(), PipelineFailure);
    // A damaged thumbnail is no thumbnail.
    QFile damaged(kept.filePath());
    ASSERT_TRUE(damaged.open(QIODevice::ReadWrite) && damaged.resize(300));
    damaged.close();
    EXPECT_THROW(start()->read(u"a.jpg"_s, 400).result(), PipelineFailure);

    QFile::remove(path);
    start().reset();
    EXPECT_EQ(folder.entryList(QDir::Files), QStringList());
}

TEST_F(Serving, CancelsWhatIsNoLongerWanted)
{
    write(u"a.jpg"_s, gradient({400, 300}));
    const PhotoItem photo = item(u"a.jpg"_s);
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(m_pipeline.read(u"a.jpg"_s, 100, source.get_token()).result(), OperationCancelled);
    EXPECT_THROW(m_pipeline.exportPhoto(photo, {}, source.get_token()).result(), OperationCancelled);
    EXPECT_EQ(m_pipeline.read(u"a.jpg"_s, 100).result().size(), QSize(100, 75));
    EXPECT_EQ(m_pipeline.blurred(gradient({50, 40})).result().size(), QSize(50, 40));
    EXPECT_THROW(m_pipeline.blurred({}).result(), PipelineFailure);
}

} // namespace
} // namespace tarnovel
