#pragma once

#include <cstddef>
#include <cstdint>

#include <QImage>

namespace tarnovel {

/// A block of memory aligned to 64 bytes, as the resampler needs it. Blocks come from a small pool shared by
/// all threads and go back to it: fresh pages for 50–100 MB cost as much as decoding does. The bytes are not
/// cleared.
class PooledBuffer {
public:
    PooledBuffer() = default;
    explicit PooledBuffer(size_t bytes);
    ~PooledBuffer();
    PooledBuffer(PooledBuffer &&other) noexcept;
    PooledBuffer &operator=(PooledBuffer &&other) noexcept;

    uint8_t *data() const { return m_data; }
    /// Hands the block over to whoever calls giveBack with it.
    uint8_t *release();
    static void giveBack(void *block);

private:
    uint8_t *m_data = nullptr;
};

/// An image with undefined pixels whose memory comes from the pool and returns there with the last copy. Its
/// rows are `pooledStride` bytes apart.
QImage pooledImage(QSize size, QImage::Format format);
qsizetype pooledStride(int width, QImage::Format format);

/// Asks the system for its large pages under a large block that nobody has touched yet: the first touch of
/// fifty megabytes is twelve thousand faults otherwise. Nothing happens where there are none.
void preferLargePages(void *block, size_t bytes);

/// Gives the memory that the pool keeps back to the system.
void emptyBufferPool();

/// While it lives, the first image of 32 bits a pixel and exactly this size that its thread takes from the
/// pool lies in `memory` instead, which must outlive that image. The innermost of several counts.
class PictureDestination {
public:
    PictureDestination(uint8_t *memory, QSize size);
    ~PictureDestination();
    PictureDestination(const PictureDestination &) = delete;
    PictureDestination &operator=(const PictureDestination &) = delete;

private:
    friend QImage pooledImage(QSize size, QImage::Format format);
    uint8_t *m_memory;
    QSize m_size;
    PictureDestination *m_before;
};

} // namespace tarnovel
