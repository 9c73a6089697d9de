#include "pipeline/ExportStages.h"

#include <algorithm>
#include <utility>

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
            throw PipelineFailure(PipelineError::fileSize);
        }
        bytes = *found.bytes;
    } else {
        bytes = encodeJpeg(canvas, defaultQuality);
    }
    if (bytes.isEmpty()) {
        throw PipelineFailure(PipelineError::write);
    }
    return bytes;
}

} // namespace

ExportStages::ExportStages(ReadingLane &reading, QString temporaryFolder, std::stop_token ending)
    : m_reading(reading),
      m_temporaryFolder(std::move(temporaryFolder)),
      m_ending(std::move(ending)),
      m_room(photosAtWork)
{
    m_composing.setMaxThreadCount(1);
    m_composing.setExpiryTimeout(-1);
}

QFuture<ExportedFile> ExportStages::photo(const PhotoItem &item, const ExportOptions &options,
                                          std::stop_token stop)
{
    auto promise = startedPromise<ExportedFile>();
    QFuture<ExportedFile> future = promise->future();
    ++m_exports;
    m_reading.thread.start([this, promise, item, options, stop = std::move(stop)]() mutable {
        m_room.acquire();
        const auto read = std::make_shared<ReadPhoto>();
        const JoinedStop either(stop, m_ending);
        try {
            *read = promised(item.file, either.token(), [&](const std::stop_token &token) {
                const QSize canvas = outputCanvas(item, options);
                return ReadPhoto{canvas, frameImages(m_reading.reader, item, canvas, token)};
            });
        } catch (...) {
            ended();
            promise->setException(std::current_exception());
            promise->finish();
            return;
        }
        m_composing.start([this, promise = std::move(promise), item, options, stop, read] {
            const JoinedStop eitherNow(stop, m_ending);
            fulfil(
                *promise, item.file, eitherNow.token(),
                [&](const std::stop_token &token) { return composed(item, options, *read, token); },
                [this] { ended(); });
        });
    });
    return future;
}

ExportedFile ExportStages::composed(const PhotoItem &item, const ExportOptions &options, ReadPhoto &read,
                                    const std::stop_token &stop)
{
    if (m_canvas.size() != read.canvas) {
        m_canvas = QImage();
        m_canvas = QImage(read.canvas, QImage::Format_RGB32);
        if (!m_canvas.isNull()) {
            preferLargePages(m_canvas.bits(), static_cast<size_t>(m_canvas.sizeInBytes()));
        }
    }
    compose(m_canvas, item, read.images);
    read.images = {}; // the memory that they lie in is wanted for the next
    throwIfCancelled(stop);
    return written(m_canvas, options, stop);
}

void ExportStages::ended()
{
    m_room.release();
    if (--m_exports == 0) {
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
