#include "decoder_client/PictureSlots.h"

#include <cerrno>
#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/FileError.h"
#include "decoder_protocol/DecoderMessage.h"

namespace tarnovel {

namespace {

/// Photos of nearly the same size share a slot.
constexpr qint64 granule = 1 << 20;

} // namespace

PictureSlot::PictureSlot(qint64 bytes)
    : m_memory(memfd_create("tarnovel-picture", MFD_CLOEXEC | MFD_ALLOW_SEALING)),
      m_size((bytes + granule - 1) / granule * granule)
{
    // Memory is a file to the system, and falls under the limit that the user may have set to files.
    if (m_memory.isOpen() && ftruncate(m_memory.get(), m_size) != 0 && errno == EFBIG) {
        throw FileError(QStringLiteral("memory"), EFBIG);
    }
    if (!m_memory.isOpen() || ftruncate(m_memory.get(), m_size) != 0 ||
        fcntl(m_memory.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
        throw std::bad_alloc();
    }
    void *mapped = mmap(nullptr, static_cast<size_t>(m_size), PROT_READ, MAP_SHARED, m_memory.get(), 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    m_bytes = static_cast<uint8_t *>(mapped);
}

PictureSlot::~PictureSlot()
{
    if (m_bytes != nullptr) {
        munmap(m_bytes, static_cast<size_t>(m_size));
    }
}

PictureSlots::Lent PictureSlots::take(qint64 bytes)
{
    // A slot that only this knows holds no picture.
    Place *free = nullptr;
    for (Place &place : m_places) {
        const bool fits = place.slot && place.slot->size() >= bytes;
        if ((!place.slot || place.slot.use_count() == 1) && (free == nullptr || fits)) {
            free = &place;
            if (fits) {
                break;
            }
        }
    }
    if (free == nullptr) {
        if (m_places.size() == mostDecoderSlots) {
            throw std::bad_alloc();
        }
        free = &m_places.emplace_back();
    }
    if (!free->slot || free->slot->size() < bytes) {
        giveBack(*free);
        *free = {++m_lastNumber, std::make_shared<PictureSlot>(bytes)};
    }
    return {free->number, free->slot};
}

void PictureSlots::giveBack(Place &place)
{
    if (place.slot) {
        m_forgotten.append(place.number);
        place.slot.reset();
    }
}

void PictureSlots::drop()
{
    for (Place &place : m_places) {
        if (place.slot.use_count() == 1) {
            giveBack(place);
        }
    }
}

} // namespace tarnovel
