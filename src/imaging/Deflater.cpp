#include "imaging/Deflater.h"

#include <new>
#include <vector>

#ifdef TARNOVEL_HAS_ISAL
#include <isa-l.h>
#else
#include <zlib.h>
#endif

namespace tarnovel {

#ifdef TARNOVEL_HAS_ISAL

struct Deflater::State {
    isal_zstream stream{};
    std::vector<uint8_t> level = std::vector<uint8_t>(ISAL_DEF_LVL1_DEFAULT);
};

Deflater::Deflater() : m_state(std::make_unique<State>())
{
    isal_zstream &stream = m_state->stream;
    isal_deflate_init(&stream);
    stream.level = 1;
    stream.level_buf = m_state->level.data();
    stream.level_buf_size = static_cast<uint32_t>(m_state->level.size());
    stream.gzip_flag = IGZIP_ZLIB;
    stream.flush = NO_FLUSH;
}

Deflater::~Deflater() = default;

void Deflater::give(QByteArrayView bytes, Part part)
{
    isal_zstream &stream = m_state->stream;
    // It is only read.
    stream.next_in = const_cast<uint8_t *>(reinterpret_cast<const uint8_t *>(bytes.data()));
    stream.avail_in = static_cast<uint32_t>(bytes.size());
    stream.end_of_stream = part == Part::Last ? 1 : 0;
}

size_t Deflater::take(uint8_t *room, size_t size)
{
    isal_zstream &stream = m_state->stream;
    stream.next_out = room;
    stream.avail_out = static_cast<uint32_t>(size);
    if (isal_deflate(&stream) != COMP_OK) {
        throw std::bad_alloc();
    }
    return size - stream.avail_out;
}

uint32_t crc32Of(QByteArrayView bytes, uint32_t before)
{
    return crc32_gzip_refl(before, reinterpret_cast<const unsigned char *>(bytes.data()),
                           static_cast<uint64_t>(bytes.size()));
}

#else

struct Deflater::State {
    z_stream stream{};
    bool isLast = false;
};

Deflater::Deflater() : m_state(std::make_unique<State>())
{
    if (deflateInit(&m_state->stream, Z_BEST_SPEED) != Z_OK) {
        throw std::bad_alloc();
    }
}

Deflater::~Deflater()
{
    deflateEnd(&m_state->stream);
}

void Deflater::give(QByteArrayView bytes, Part part)
{
    // It is only read.
    m_state->stream.next_in = const_cast<Bytef *>(reinterpret_cast<const Bytef *>(bytes.data()));
    m_state->stream.avail_in = static_cast<uInt>(bytes.size());
    m_state->isLast = part == Part::Last;
}

size_t Deflater::take(uint8_t *room, size_t size)
{
    m_state->stream.next_out = room;
    m_state->stream.avail_out = static_cast<uInt>(size);
    const int made = deflate(&m_state->stream, m_state->isLast ? Z_FINISH : Z_NO_FLUSH);
    if (made != Z_OK && made != Z_STREAM_END && made != Z_BUF_ERROR) {
        throw std::bad_alloc();
    }
    return size - m_state->stream.avail_out;
}

uint32_t crc32Of(QByteArrayView bytes, uint32_t before)
{
    return static_cast<uint32_t>(
        crc32(before, reinterpret_cast<const Bytef *>(bytes.data()), static_cast<uInt>(bytes.size())));
}

#endif

} // namespace tarnovel
