#include "imaging/BufferPool.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace tarnovel {
namespace {

constexpr size_t alignment = 64;
// The planes of a 24-megapixel photo and an export canvas stay; anything larger is rare and given back.
constexpr size_t largestKeptBytes = size_t(96) << 20;
constexpr size_t mostKeptBytes = size_t(160) << 20;
constexpr size_t smallestKeptBytes = size_t(256) << 10;

/// Lies in the 64 bytes before the block that the pool hands out.
struct Header {
    size_t capacity;
};

uint8_t *blockOf(Header *header)
{
    return reinterpret_cast<uint8_t *>(header) + alignment;
}

Header *headerOf(void *block)
{
    return reinterpret_cast<Header *>(static_cast<uint8_t *>(block) - alignment);
}

void freeBlock(Header *header)
{
    ::operator delete(header, std::align_val_t(alignment));
}

class Pool {
public:
    uint8_t *take(size_t bytes)
    {
        {
            const std::lock_guard lock(m_mutex);
            auto best = m_free.end();
            for (auto it = m_free.begin(); it != m_free.end(); ++it) {
                const size_t capacity = (*it)->capacity;
                if (capacity >= bytes && capacity / 4 <= bytes &&
                    (best == m_free.end() || capacity < (*best)->capacity)) {
                    best = it;
                }
            }
            if (best != m_free.end()) {
                Header *header = *best;
                m_keptBytes -= header->capacity;
                m_free.erase(best);
                return blockOf(header);
            }
        }
        const size_t capacity = std::max(bytes, size_t(1));
        auto *header =
            static_cast<Header *>(::operator new(capacity + alignment, std::align_val_t(alignment)));
        preferLargePages(header, capacity + alignment);
        header->capacity = capacity;
        return blockOf(header);
    }

    void giveBack(uint8_t *block)
    {
        Header *header = headerOf(block);
        std::vector<Header *> dropped;
        {
            const std::lock_guard lock(m_mutex);
            if (header->capacity < smallestKeptBytes || header->capacity > largestKeptBytes) {
                dropped.push_back(header);
            } else {
                m_free.push_back(header);
                m_keptBytes += header->capacity;
            }
            while (m_keptBytes > mostKeptBytes) {
                m_keptBytes -= m_free.front()->capacity;
                dropped.push_back(m_free.front());
                m_free.erase(m_free.begin());
            }
        }
        std::for_each(dropped.begin(), dropped.end(), freeBlock);
    }

    void clear()
    {
        std::vector<Header *> dropped;
        {
            const std::lock_guard lock(m_mutex);
            dropped.swap(m_free);
            m_keptBytes = 0;
        }
        std::for_each(dropped.begin(), dropped.end(), freeBlock);
    }

private:
    std::mutex m_mutex;
    /// Oldest first.
    std::vector<Header *> m_free;
    size_t m_keptBytes = 0;
};

Pool &pool()
{
    // Never destroyed: an image held by another static object may come back after main has ended.
    static Pool *shared = new Pool;
    return *shared;
}

thread_local PictureDestination *destination = nullptr;

} // namespace

PooledBuffer::PooledBuffer(size_t bytes) : m_data(pool().take(bytes)) {}

PooledBuffer::~PooledBuffer()
{
    giveBack(m_data);
}

PooledBuffer::PooledBuffer(PooledBuffer &&other) noexcept : m_data(other.release()) {}

PooledBuffer &PooledBuffer::operator=(PooledBuffer &&other) noexcept
{
    std::swap(m_data, other.m_data);
    return *this;
}

uint8_t *PooledBuffer::release()
{
    return std::exchange(m_data, nullptr);
}

void PooledBuffer::giveBack(void *block)
{
    if (block != nullptr) {
        pool().giveBack(static_cast<uint8_t *>(block));
    }
}

qsizetype pooledStride(int width, QImage::Format format)
{
    return (qsizetype(width) * QImage::toPixelFormat(format).bitsPerPixel() / 8 + 63) / 64 * 64;
}

QImage pooledImage(QSize size, QImage::Format format)
{
    const qsizetype stride = pooledStride(size.width(), format);
    if (PictureDestination *lent = destination; lent != nullptr && lent->m_memory != nullptr &&
                                                lent->m_size == size &&
                                                QImage::toPixelFormat(format).bitsPerPixel() == 32) {
        uint8_t *memory = std::exchange(lent->m_memory, nullptr);
        return QImage(memory, size.width(), size.height(), stride, format);
    }
    PooledBuffer buffer(static_cast<size_t>(stride) * static_cast<size_t>(size.height()));
    uint8_t *block = buffer.release();
    return QImage(block, size.width(), size.height(), stride, format, &PooledBuffer::giveBack, block);
}

void preferLargePages(void *block, size_t bytes)
{
    constexpr size_t largePage = size_t(2) << 20;
    constexpr size_t smallestWorth = 2 * largePage;
    if (bytes < smallestWorth) {
        return;
    }
    // Whole large pages alone: others may hold somebody else's data beside the block.
    const auto begin = (reinterpret_cast<uintptr_t>(block) + largePage - 1) / largePage * largePage;
    const auto end = (reinterpret_cast<uintptr_t>(block) + bytes) / largePage * largePage;
    if (begin < end) {
        madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
    }
}

void emptyBufferPool()
{
    pool().clear();
}

PictureDestination::PictureDestination(uint8_t *memory, QSize size)
    : m_memory(memory), m_size(size), m_before(std::exchange(destination, this))
{
}

PictureDestination::~PictureDestination()
{
    destination = m_before;
}

} // namespace tarnovel
