#include "pipeline/ExportStages.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include <QDir>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Uuid.h"
#include "imaging/BufferPool.h"
#include "imaging/ImageEncoder.h"
#include "pipeline/FrameImages.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr double defaultQuality = 0.95;
/// One that is read, and one that is drawn, encoded and written.
constexpr int photosAtWork = 2;

QByteArray encoded(const QImage &canvas, const ExportOptions &options, const std::stop_token &stop)
{
    QByteArray bytes;
    if (options.png) {
        bytes = encodePng(canvas, stop);
    } else if (options.maxMB > 0) {
        const double limit = std::min(options.maxMB * 1'000'000, 1e15);
        const JpegSearchResult found = searchJpegQuality(canvas, static_cast<qint64>(limit), stop);
        if (!found.bytes) {
            throw PipelineFailure(PipelineError::FileSize);
        }
        bytes = *found.bytes;
    } else {
        bytes = encodeJpeg(canvas, defaultQuality);
    }
    if (bytes.isEmpty()) {
        throw PipelineFailure(PipelineError::Write);
    }
    return bytes;
}

} // namespace

ExportStages::ExportStages(ReadingLane &reading, QString temporaryFolder, Memory memory,
                           std::stop_token ending)
    : m_reading(reading),
      m_temporaryFolder(std::move(temporaryFolder)),
      m_memory(memory),
      m_ending(std::move(ending)),
      m_room(photosAtWork)
{
    m_composing.setMaxThreadCount(1);
    m_composing.setExpiryTimeout(-1);
}

struct ExportStages::Exporting {
    PhotoItem item;
    std::stop_token stop;
    /// One size, until its promise is kept.
    struct Size {
        ExportOptions options;
        QPromise<ExportedFile> promise;
        QSize canvas;
        CompositionImages images;
        bool told = false;

        void fail(const std::exception_ptr &failure)
        {
            told = true;
            promise.setException(failure);
            promise.finish();
        }
    };
    std::vector<Size> sizes;

    /// Those that nobody has been told of.
    std::vector<Size *> open()
    {
        std::vector<Size *> waiting;
        for (Size &size : sizes) {
            if (!size.told) {
                waiting.push_back(&size);
            }
        }
        return waiting;
    }
};

QList<QFuture<ExportedFile>> ExportStages::sizes(const PhotoItem &item, const QList<ExportOptions> &sizes,
                                                 std::stop_token stop)
{
    const auto exporting = std::make_shared<Exporting>();
    exporting->item = item;
    exporting->stop = std::move(stop);
    QList<QFuture<ExportedFile>> futures;
    for (const ExportOptions &options : sizes) {
        Exporting::Size &size = exporting->sizes.emplace_back();
        size.options = options;
        futures.append(size.promise.future());
        size.promise.start();
    }
    ++m_exports;
    m_reading.thread.start([this, exporting] { read(exporting); });
    return futures;
}

void ExportStages::read(const std::shared_ptr<Exporting> &exporting)
{
    m_room.acquire();
    const JoinedStop either(exporting->stop, m_ending);
    std::exception_ptr failure;
    for (Exporting::Size &size : exporting->sizes) {
        try {
            size.canvas = outputCanvas(exporting->item, size.options);
        } catch (const PipelineFailure &) {
            failure = std::current_exception();
            // The others go on; the last is told of after the room for the next photo has been made.
            if (exporting->open().size() > 1) {
                size.fail(failure);
            }
        }
    }
    const std::vector<Exporting::Size *> wanted = exporting->open();
    const bool hasCanvas =
        std::ranges::any_of(wanted, [](const auto *size) { return !size->canvas.isEmpty(); });
    try {
        if (hasCanvas) {
            QList<QSize> canvases;
            std::ranges::transform(wanted, std::back_inserter(canvases), &Exporting::Size::canvas);
            const auto images =
                promised(exporting->item.file, either.token(), [&](const std::stop_token &token) {
                    return frameImages(m_reading.reader, exporting->item, canvases, token);
                });
            for (size_t i = 0; i < wanted.size(); ++i) {
                wanted[i]->images = images.at(static_cast<qsizetype>(i));
            }
            m_composing.start([this, exporting] { write(exporting); });
            return;
        }
    } catch (...) {
        failure = std::current_exception();
    }
    ended();
    for (Exporting::Size *size : wanted) {
        size->fail(failure);
    }
}

void ExportStages::write(const std::shared_ptr<Exporting> &exporting)
{
    const JoinedStop either(exporting->stop, m_ending);
    const std::vector<Exporting::Size *> wanted = exporting->open();
    for (Exporting::Size *size : wanted) {
        const auto work = [&](const std::stop_token &token) {
            if (m_canvas.size() != size->canvas) {
                m_canvas = QImage();
                m_canvas = QImage(size->canvas, QImage::Format_RGB32);
                if (!m_canvas.isNull()) {
                    preferLargePages(m_canvas.bits(), static_cast<size_t>(m_canvas.sizeInBytes()));
                }
            }
            compose(m_canvas, exporting->item, size->images);
            size->images = {}; // the memory that they lie in is wanted for the next
            throwIfCancelled(token);
            return written(m_canvas, size->options, token);
        };
        const bool last = size == wanted.back();
        // A file that nobody waits for any more goes as soon as it has been told of.
        QPromise<ExportedFile> promise = std::move(size->promise);
        fulfil(promise, exporting->item.file, either.token(), work, [this, last] {
            if (last) {
                ended();
            }
        });
    }
}

void ExportStages::ended()
{
    m_room.release();
    if (--m_exports == 0 && m_memory == Memory::GivenBack) {
        m_composing.start([this] { m_canvas = {}; });
        m_reading.thread.start([&reading = m_reading] { reading.reader.rest(); });
    }
}

QFuture<ExportedFile> ExportStages::image(const QImage &image, const ExportOptions &options,
                                          std::stop_token stop)
{
    return enqueued(
        m_composing, u"a finished picture"_s, std::move(stop), m_ending,
        [this, image, options](const std::stop_token &token) { return written(image, options, token); });
}

ExportedFile ExportStages::written(const QImage &image, const ExportOptions &options,
                                   const std::stop_token &stop) const
{
    const QByteArray bytes = encoded(image, options, stop);
    throwIfCancelled(stop);
    const QString folder = m_temporaryFolder + u"/Exports"_s;
    if (!QDir().mkpath(folder)) {
        throw FileError(folder, QFileInfo(folder).exists() ? ENOTDIR : errno);
    }
    const QString path = folder + u"/Kesmar-"_s + uuidText(QUuid::createUuid()).left(8) +
                         (options.png ? u".png"_s : u".jpg"_s);
    replaceFile(path, bytes, Durability::Unsynced);
    return {std::make_shared<UnclaimedFile>(path), path, image.size(), bytes.size()};
}

} // namespace tarnovel
