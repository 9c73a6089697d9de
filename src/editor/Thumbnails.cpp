#include "editor/Thumbnails.h"

#include <algorithm>
#include <utility>

#include <QPainter>

#include "base/Cancellation.h"
#include "editor/CanvasImages.h"
#include "pipeline/FrameImages.h"
#include "pipeline/PipelineError.h"
#include "pipeline/PlacedPhoto.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

/// Decoded photos that are kept, in bytes.
constexpr int keptBytes = 96'000'000;
/// The sizes at which photos are kept; a larger thumbnail takes the next. The last is the preview's, which
/// the service has at hand.
constexpr std::array<int, 3> sourcePixels = {400, 800, PhotoReader::previewPixels};
constexpr int companionPixels = 400;
/// A full session in the strip, on the pages and in the cards, twice.
constexpr size_t mostEntries = 400;

int sourceSize(QSize canvas)
{
    const int longer = std::max(canvas.width(), canvas.height());
    const auto *found = std::find_if(sourcePixels.begin(), sourcePixels.end(),
                                     [longer](int pixels) { return pixels >= longer; });
    return found == sourcePixels.end() ? sourcePixels.back() : *found;
}

} // namespace

Thumbnails::Thumbnails(ImagePipeline &pipeline) : m_pipeline(pipeline), m_sources(keptBytes)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(CanvasImages::rest);
    m_rest.callOnTimeout(this, [this] {
        m_queue.insert(m_queue.end(), m_resting.begin(), m_resting.end());
        m_resting.clear();
        next();
    });
}

Thumbnails::~Thumbnails()
{
    m_stop.request_stop();
}

QSize Thumbnails::canvasIn(QSize box, const PhotoItem &item)
{
    const double ratio = std::clamp(item.settings.ratio(item.size()), 0.05, 20.0);
    const QSizeF fitted = QSizeF(ratio, 1).scaled(box, Qt::KeepAspectRatio);
    return fitted.toSize().expandedTo({1, 1});
}

QImage Thumbnails::image(const ThumbnailKey &key, const PhotoItem &item, QSize box)
{
    const QSize canvas = canvasIn(box, item);
    const Key place(key, std::max(box.width(), box.height()));
    Entry &entry = m_entries[place];
    entry.used = ++m_uses;
    const bool fresh = entry.canvas == canvas && entry.item.file == item.file &&
                       entry.item.size() == item.size() && entry.item.settings == item.settings &&
                       (!entry.image.isNull() || entry.failed);
    if (fresh) {
        return entry.image;
    }
    if (entry.item.file != item.file) {
        entry.image = {};
    }
    entry.item = item;
    entry.canvas = canvas;
    entry.failed = false;
    std::erase(m_queue, place);
    std::erase(m_resting, place);
    if (entry.image.isNull()) {
        m_queue.push_back(place);
        next();
    } else {
        m_resting.push_back(place);
        m_rest.start();
    }
    return entry.image;
}

bool Thumbnails::incomplete(const PhotoItem &item) const
{
    const std::set<QString> files = item.settings.referencedFiles();
    return std::ranges::any_of(files, [this](const QString &file) { return unreadable(file); });
}

void Thumbnails::prune()
{
    if (m_entries.size() <= mostEntries) {
        return;
    }
    std::vector<quint64> uses;
    uses.reserve(m_entries.size());
    for (const auto &[key, entry] : m_entries) {
        uses.push_back(entry.used);
    }
    const auto middle = uses.begin() + static_cast<std::ptrdiff_t>(uses.size() / 2);
    std::nth_element(uses.begin(), middle, uses.end());
    std::erase_if(m_entries, [this, oldest = *middle](const auto &row) {
        return row.second.used < oldest && std::ranges::find(m_queue, row.first) == m_queue.end() &&
               std::ranges::find(m_resting, row.first) == m_resting.end();
    });
}

void Thumbnails::next()
{
    if (m_job || m_queue.empty()) {
        return;
    }
    const Key key = m_queue.back();
    m_queue.pop_back();
    const Entry &entry = m_entries[key];
    m_job = std::make_unique<Job>(Job{key, entry.item, entry.canvas, {}, {}});
    load(0, std::make_shared<const std::vector<Source>>(sourcesOf(entry.item, entry.canvas)));
}

std::vector<Thumbnails::Source> Thumbnails::sourcesOf(const PhotoItem &item, QSize canvas) const
{
    const auto source = [](const QString &file, int pixels) {
        return Source{file + u' ' + QString::number(pixels), file, pixels};
    };
    const FrameSettings &settings = item.settings;
    const bool film = settings.style == FrameStyle::film;
    const TextLayer *logo = settings.layer(logoLayer);
    std::vector<Source> sources(4);
    sources[0] = source(item.file, sourceSize(canvas));
    if (!film && settings.background == Backdrop::blur) {
        sources[1] = source(item.file, blurSourcePixels);
        sources[1].key += u" blurred"_s;
        sources[1].blurred = true;
    } else if (!film && settings.background == Backdrop::image && settings.backgroundFile) {
        sources[1] = source(*settings.backgroundFile, sourceSize(canvas));
    }
    if (logo && logo->visible && logo->imageFile) {
        sources[2] = source(*logo->imageFile, companionPixels);
    }
    if (settings.handwritingFile) {
        sources[3] = source(*settings.handwritingFile, companionPixels);
    }
    return sources;
}

void Thumbnails::load(size_t index, const std::shared_ptr<const std::vector<Source>> &sources)
{
    if (index == sources->size()) {
        draw();
        return;
    }
    const Source &source = sources->at(index);
    if (source.file.isEmpty()) {
        load(index + 1, sources);
        return;
    }
    if (const QImage *known = m_sources.object(source.key)) {
        loaded(index, sources, *known);
        return;
    }
    const auto arrived = [this, index, sources](const QFuture<QImage> &finished) {
        const Source &wanted = sources->at(index);
        QImage image;
        try {
            image = finished.result();
            m_sources.insert(wanted.key, new QImage(image.copy()), static_cast<int>(image.sizeInBytes()));
            m_unreadable.erase(wanted.file);
        } catch (const OperationCancelled &) {
            return;
        } catch (const QException &) {
            m_unreadable.insert(wanted.file);
        }
        loaded(index, sources, image);
    };
    const QFuture<QImage> read = m_pipeline.read(source.file, source.pixels, m_stop.get_token());
    if (!source.blurred) {
        whenFinished<QImage>(read, this, arrived);
        return;
    }
    whenFinished<QImage>(read, this, [this, arrived](const QFuture<QImage> &finished) {
        try {
            whenFinished<QImage>(m_pipeline.blurred(finished.result(), m_stop.get_token()), this, arrived);
        } catch (const QException &) {
            arrived(finished);
        }
    });
}

void Thumbnails::loaded(size_t index, const std::shared_ptr<const std::vector<Source>> &sources,
                        const QImage &image)
{
    switch (index) {
    case 0:
        m_job->photo = image;
        break;
    case 1:
        m_job->images.background = image;
        break;
    case 2:
        m_job->images.logo = image;
        break;
    default:
        m_job->images.signature = image;
        break;
    }
    if (index == 0 && image.isNull()) {
        finish({});
        return;
    }
    load(index + 1, sources);
}

void Thumbnails::draw()
{
    m_worker.run(
        [job = *m_job]() mutable {
            const FrameSettings &settings = job.item.settings;
            job.images.photo = placedPhoto(
                job.photo, CompositionRenderer::photoPlacement(job.item, settings, job.canvas), job.canvas);
            job.images.background = coveringPicture(job.images.background, job.canvas);
            job.images.logo = scaledPicture(job.images.logo, logoPixels(job.item, job.canvas));
            job.images.signature = scaledPicture(
                job.images.signature, signaturePixels(job.item, job.images.signature.size(), job.canvas));
            QImage image(job.canvas, QImage::Format_RGB32);
            image.fill(Qt::white);
            {
                QPainter painter(&image);
                CompositionRenderer::draw(painter, job.item, settings, job.canvas, job.images);
            }
            return image;
        },
        [this](const QImage &image) { finish(image); });
}

void Thumbnails::finish(const QImage &image)
{
    const std::unique_ptr<Job> job = std::exchange(m_job, nullptr);
    Entry &entry = m_entries[job->key];
    // A newer wish for the same picture is still in the queue; until then this one is better than none.
    if (!image.isNull()) {
        entry.image = image;
    }
    if (entry.item == job->item && entry.canvas == job->canvas) {
        entry.failed = image.isNull();
    }
    prune();
    Q_EMIT ready(job->key.first);
    next();
}

} // namespace tarnovel
