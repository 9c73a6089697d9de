#pragma once

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

#include <QImage>
#include <QList>

#include "base/MessageSocket.h"

namespace tarnovel {

/// A piece of memory that the decoder writes pictures into and the program only reads. Nobody can cut it
/// short: it is sealed.
class PictureSlot {
public:
    /// Throws std::bad_alloc, and a FileError where the user has limited the size of files to less.
    explicit PictureSlot(qint64 bytes);
    ~PictureSlot();
    PictureSlot(const PictureSlot &) = delete;
    PictureSlot &operator=(const PictureSlot &) = delete;

    qint64 size() const { return m_size; }
    int descriptor() const { return m_memory.get(); }
    const uint8_t *at(qint64 offset) const { return m_bytes + offset; }

private:
    OwnedDescriptor m_memory;
    uint8_t *m_bytes = nullptr;
    qint64 m_size = 0;
};

/// The slots between a program and one decoder, kept from picture to picture: fresh pages cost as much as
/// decoding does. One thread lends; pictures may come back on any.
class PictureSlots {
public:
    struct Lent {
        quint32 number = 0;
        std::shared_ptr<PictureSlot> slot;
    };

    /// A slot that no picture lies in, with room for so many bytes. Throws like PictureSlot, also when all
    /// are taken.
    Lent take(qint64 bytes);
    /// Gives the memory back, but for what pictures still lie in.
    void drop();
    /// The numbers of the slots that have been given back since the last call.
    QList<quint32> takeForgotten() { return std::exchange(m_forgotten, {}); }

private:
    struct Place {
        quint32 number = 0;
        std::shared_ptr<PictureSlot> slot;
    };
    void giveBack(Place &place);

    std::vector<Place> m_places;
    QList<quint32> m_forgotten;
    quint32 m_lastNumber = 0;
};

} // namespace tarnovel
