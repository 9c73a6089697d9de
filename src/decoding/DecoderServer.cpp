#include "decoding/DecoderServer.h"

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/Cancellation.h"
#include "base/MessageSocket.h"
#include "decoder_protocol/DecoderMessage.h"
#include "decoding/CaptureReader.h"
#include "decoding/ColorProfile.h"
#include "decoding/FormatLibrary.h"
#include "decoding/PhotoFile.h"
#include "imaging/BufferPool.h"

namespace tarnovel {
namespace {

/// After this long without a request the memory that is kept for the next photo goes back.
constexpr std::chrono::seconds restAfter{3};
constexpr size_t descriptorsOfRequest = 2;
// Each arena of the allocator keeps what its threads have freed.
constexpr int mostArenas = 2;

/// A grey HEIC picture of 64 × 64 pixels.
constexpr char heicSample[] =
    "AAAAHGZ0eXBoZWljAAAAAG1pZjFoZWljbWlhZgAAAUJtZXRhAAAAAAAAACFoZGxyAAAAAAAAAABwaWN0AAAAAAAAAAAAAAAAAAAA"
    "AA5waXRtAAAAAAABAAAAImlsb2MAAAAAREAAAQABAAAAAAFmAAEAAAAAAAAAEQAAACNpaW5mAAAAAAABAAAAFWluZmUCAAAAAAEA"
    "AGh2YzEAAAAAwmlwcnAAAACkaXBjbwAAAHhodmNDAQNwAAAAAAAAAAAAHvAA/P34+AAADwMgAAEAGEABDAH//wNwAAADAJAAAAMA"
    "AAMAHroCQCEAAQArQgEBA3AAAAMAkAAAAwAAAwAeoCCBBZbqSSmubgQEDAgAAAMACAAAAwAIQCIAAQAHRAHBcrAiQAAAABRpc3Bl"
    "AAAAAAAAAEAAAABAAAAAEHBpeGkAAAAAAwgICAAAABZpcG1hAAAAAAAAAAEAAQOBAoMAAAAZbWRhdAAAAA0oAa8LYPpSKM9iEd7A";

/// Shared memory of the program's, which cannot cut it short under us: it is sealed.
class Slot {
public:
    explicit Slot(const OwnedDescriptor &memory)
    {
        const qint64 size = RegularFile(dup(memory.get())).size();
        void *mapped =
            mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, memory.get(), 0);
        if (mapped == MAP_FAILED) {
            throw std::bad_alloc();
        }
        m_bytes = static_cast<uint8_t *>(mapped);
        m_size = size;
    }
    ~Slot() { munmap(m_bytes, static_cast<size_t>(m_size)); }
    Slot(const Slot &) = delete;
    Slot &operator=(const Slot &) = delete;

    uint8_t *at(qint64 offset) const { return m_bytes + offset; }
    qint64 size() const { return m_size; }

private:
    uint8_t *m_bytes = nullptr;
    qint64 m_size = 0;
};

struct Job {
    DecoderRequest request;
    std::vector<OwnedDescriptor> descriptors;
};

/// What the decoding thread keeps from one request to the next.
class Desk {
public:
    void forget(const QList<quint32> &slots)
    {
        for (const quint32 slot : slots) {
            m_slots.erase(slot);
        }
    }

    DecoderReply answer(Job job, const std::stop_token &stop)
    {
        DecoderReply reply;
        reply.id = job.request.id;
        try {
            take(job);
            if (job.request.kind == DecoderRequest::Kind::Describe) {
                reply.facts = {m_photo->header(), m_photo->metadata()};
                reply.kind = DecoderReply::Kind::Described;
            } else {
                reply.transparent = decode(job.request, stop);
                reply.kind = DecoderReply::Kind::Decoded;
            }
        } catch (const OperationCancelled &) {
            reply.kind = DecoderReply::Kind::Cancelled;
        } catch (const ImageError &error) {
            reply.kind = DecoderReply::Kind::Failed;
            reply.cause = error.cause();
            reply.detail = error.what();
        } catch (const std::bad_alloc &) {
            reply.kind = DecoderReply::Kind::Failed;
            reply.cause = ImageError::Cause::TooLarge;
            reply.detail = "out of memory";
        } catch (const std::exception &error) {
            reply.kind = DecoderReply::Kind::Failed;
            reply.cause = ImageError::Cause::Damaged;
            reply.detail = error.what();
        }
        return reply;
    }

    void rest()
    {
        m_photo.reset();
        emptyBufferPool();
        malloc_trim(0);
    }

private:
    void take(Job &job)
    {
        if (job.descriptors.empty()) {
            throw ImageError(ImageError::Cause::Missing, "no file came with the request");
        }
        forget(job.request.forgotten);
        if (job.request.slotIsNew && job.descriptors.size() > 1 && m_slots.size() < mostDecoderSlots) {
            m_slots[job.request.slot] = std::make_unique<Slot>(job.descriptors[1]);
        }
        RegularFile file(job.descriptors[0].release());
        // Mostly the photo that has just been described.
        if (!m_photo || m_photo->identity() != file.identity()) {
            m_photo.reset();
            m_photo.emplace(std::move(file));
        }
    }

    QList<bool> decode(const DecoderRequest &request, const std::stop_token &stop)
    {
        const auto slot = m_slots.find(request.slot);
        const SlotLayout layout(request.parts);
        if (request.parts.isEmpty() || slot == m_slots.end() || layout.bytes > slot->second->size()) {
            throw ImageError(ImageError::Cause::TooLarge, "no room for the picture");
        }
        QList<QImage> images;
        {
            // The first picture is made where it is wanted, unless it is turned.
            const PictureDestination first(slot->second->at(0), request.parts.first().size);
            images = m_photo->decode(request.parts, stop);
        }
        QList<bool> transparent;
        for (qsizetype i = 0; i < images.size(); ++i) {
            copy(images[i], slot->second->at(layout.offsets[i]));
            transparent.append(images[i].hasAlphaChannel());
        }
        return transparent;
    }

    static void copy(const QImage &image, uint8_t *target)
    {
        if (image.constBits() == target) {
            return;
        }
        const qsizetype stride = pooledStride(image.width(), image.format());
        for (int y = 0; y < image.height(); ++y) {
            std::memcpy(target + y * stride, image.constScanLine(y), static_cast<size_t>(image.width()) * 4);
        }
    }

    std::optional<PhotoFile> m_photo;
    std::map<quint32, std::unique_ptr<Slot>> m_slots;
};

/// The decoding thread and its queue.
class Decoding {
public:
    explicit Decoding(int socket) : m_socket(socket), m_thread([this] { run(); }) {}

    void add(Job job)
    {
        const std::scoped_lock lock(m_mutex);
        m_jobs.push_back(std::move(job));
        m_wake.notify_one();
    }

    void cancel(quint32 id)
    {
        const std::scoped_lock lock(m_mutex);
        m_cancelled = id; // which may have to begin yet
        if (m_current == id) {
            m_stop.request_stop();
        }
    }

private:
    [[noreturn]] void run()
    {
        Desk desk;
        bool rested = true;
        for (;;) {
            std::unique_lock lock(m_mutex);
            m_current.reset();
            const auto hasWork = [this] { return !m_jobs.empty(); };
            // Nothing moves by itself while there is nothing to do, or while work hangs: the program watches
            // the processor's clock of this process.
            if (!rested && !m_wake.wait_for(lock, restAfter, hasWork)) {
                desk.rest();
                rested = true;
            }
            m_wake.wait(lock, hasWork);
            rested = false;
            Job job = std::move(m_jobs.front());
            m_jobs.pop_front();
            m_current = job.request.id;
            m_stop = {};
            const std::stop_token stop = m_stop.get_token();
            if (m_current == m_cancelled) {
                m_stop.request_stop();
            }
            lock.unlock();
            if (job.request.kind == DecoderRequest::Kind::Forget) {
                desk.forget(job.request.forgotten);
            } else if (!sendMessage(m_socket, encoded(desk.answer(std::move(job), stop)))) {
                _exit(0);
            }
        }
    }

    const int m_socket;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Job> m_jobs;
    std::optional<quint32> m_current;
    std::optional<quint32> m_cancelled;
    std::stop_source m_stop;
    std::thread m_thread;
};

} // namespace

void prepareDecoder()
{
    mallopt(M_ARENA_MAX, mostArenas);
    prepareParser();
    // The first thread of a process has the C library set up a signal.
    std::thread([] {}).join();
    if (!hasFormatLibrary()) {
        QImage sample(2, 2, QImage::Format_RGB32);
        sample.fill(Qt::gray);
        convertedToSrgb(sample, QColorSpace(QColorSpace::DisplayP3).iccProfile());
        return;
    }
    // A photo in its own colours, decoded once, brings in the codecs and the pool of threads.
    const OwnedDescriptor memory(memfd_create("warm-up", MFD_CLOEXEC));
    const QByteArray sample = QByteArray::fromBase64(heicSample);
    if (::write(memory.get(), sample.constData(), static_cast<size_t>(sample.size())) != sample.size()) {
        return;
    }
    try {
        PhotoFile photo{RegularFile(dup(memory.get()))};
        photo.metadata();
        const QList<PicturePart> parts = {PicturePart::whole(photo.header().uprightSize(), 8)};
        convertedToSrgb(photo.decode(parts).first(), QColorSpace(QColorSpace::DisplayP3).iccProfile());
    } catch (const std::exception &) {
        return; // without that library its formats cannot be read, and all others can
    }
}

void serveDecoder(int socket, const QByteArrayList &missing)
{
    DecoderReply ready;
    ready.id = decoderProtocol;
    ready.detail = missing.join(", ");
    sendMessage(socket, encoded(ready));
    auto *decoding = new Decoding(socket); // goes with the process: a decoding in progress is not waited for
    for (;;) {
        ReceivedMessage message;
        if (receiveMessage(socket, message, descriptorsOfRequest) != Receiving::Message) {
            _exit(0);
        }
        const std::optional<DecoderRequest> request = decodedRequest(message.bytes);
        if (!request) {
            _exit(1);
        }
        if (request->kind == DecoderRequest::Kind::Cancel) {
            decoding->cancel(request->id);
        } else {
            decoding->add({*request, std::move(message.descriptors)});
        }
    }
}

} // namespace tarnovel
