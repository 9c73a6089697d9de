#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <QByteArrayView>

namespace tarnovel {

/// Compresses bytes to a zlib stream (RFC 1950), fast rather than small. ISA-L does it where it was there to
/// be built with, in a quarter of zlib's time.
class Deflater {
public:
    /// Throws an std::bad_alloc at most, as do the others.
    Deflater();
    ~Deflater();
    Deflater(const Deflater &) = delete;
    Deflater &operator=(const Deflater &) = delete;

    enum class Part { More, Last };
    /// What is compressed next. It has to stay until `take` has left room.
    void give(QByteArrayView bytes, Part part);
    /// Fills the room with what comes out and returns how much that is: less than the room once all that was
    /// given has been taken.
    size_t take(uint8_t *room, size_t size);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The check of PNG chunks and gzip files over bytes, going on from that of the bytes before.
uint32_t crc32Of(QByteArrayView bytes, uint32_t before = 0);

} // namespace tarnovel
