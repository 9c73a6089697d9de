#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>

#include <QImage>
#include <QString>

#include "base/ChildProcess.h"
#include "decoder_client/PictureSlots.h"
#include "decoder_protocol/DecoderMessage.h"
#include "imaging/RegularFile.h"

namespace tarnovel {

/// Reads photos in a process of its own, which is started at the first request and again after it has ended:
/// what strangers wrote is never parsed in this one. It belongs to one thread at a time.
///
/// A photo that ends the decoder, lets it hang or asks too much of it is unreadable, and only that photo.
class PhotoDecoder {
public:
    PhotoDecoder();
    /// With another decoder ready while one is busy with a format that has to be ended by force: whoever
    /// gives such a photo up for another one does not wait for the start.
    enum class Spare { None, WhileSlow };
    explicit PhotoDecoder(Spare spare);
    /// `jpegProgram`, where there is one, starts faster and reads JPEG files alone, and not all of them: it
    /// is taken as long as it will do.
    explicit PhotoDecoder(QString program, ChildProcess::Patience patience = {}, QString jpegProgram = {});
    ~PhotoDecoder();
    PhotoDecoder(const PhotoDecoder &) = delete;
    PhotoDecoder &operator=(const PhotoDecoder &) = delete;

    /// What is known of a photo before it is decoded; remembered as long as its file stays the same. Throws
    /// an ImageError and OperationCancelled.
    const PhotoFacts &facts(const RegularFile &photo, const std::stop_token &stop = {});

    /// Parts of the upright picture, in sRGB, from one decoding: RGB32, or ARGB32_Premultiplied where it has
    /// transparency. They lie in memory that the next pictures will want: those that live on are to be
    /// copied. Throws an ImageError, OperationCancelled and std::bad_alloc.
    QList<QImage> decode(const RegularFile &photo, const QList<PicturePart> &parts,
                         const std::stop_token &stop = {});

    /// Gives the memory of pictures back. The process stays.
    void rest();

    /// How many times a decoder was started.
    int starts() const { return m_starts; }

private:
    DecoderReply exchange(const RegularFile &photo, const DecoderRequest &request,
                          const PictureSlots::Lent &slot, const std::stop_token &stop);
    DecoderReply asked(const RegularFile &photo, DecoderRequest request, const PictureSlots::Lent &slot,
                       const std::stop_token &stop);
    void start(const std::stop_token &stop);
    /// Makes room for the decoder of all formats, if the one at hand has not all that this photo needs.
    void chooseProgram(const RegularFile &photo);
    bool isStarted(std::unique_ptr<ChildProcess> process, const std::stop_token &stop);
    void prepareSpare(const FileIdentity &photo);
    DecoderReply awaited(const RegularFile &photo, quint32 id, const std::stop_token &stop);
    [[noreturn]] void cancelRequest(const FileIdentity &photo, quint32 id);
    [[noreturn]] void lost(const FileIdentity &photo, const QByteArray &why, ImageError::Cause cause);

    const QString m_program;
    const QString m_jpegProgram;
    const ChildProcess::Patience m_patience;
    const Spare m_spareKind = Spare::None;
    /// Nothing but JPEG files has been asked for, and the program for them has been enough.
    bool m_jpegAlone = false;
    std::unique_ptr<ChildProcess> m_process;
    /// Started, and not heard of yet.
    std::unique_ptr<ChildProcess> m_spare;
    PictureSlots m_slots;
    /// The slots that the decoder has written into.
    std::set<quint32> m_mapped;
    /// Killed, and not waited for yet.
    std::deque<std::unique_ptr<ChildProcess>> m_dying;
    /// The photo that this decoder answered about last.
    std::optional<FileIdentity> m_served;
    int m_failedStarts = 0;
    quint32 m_lastId = 0;
    int m_starts = 0;
    std::map<FileIdentity, PhotoFacts> m_facts;
    /// How many decoders a photo has ended.
    std::map<FileIdentity, int> m_deaths;
};

/// Where the decoder is, or the one for JPEG files alone: beside the program in a build tree, in its own
/// folder of an installed one. Empty where there is none.
QString decoderProgram();
QString jpegDecoderProgram();

} // namespace tarnovel
