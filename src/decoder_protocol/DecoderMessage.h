#pragma once

#include <optional>

#include <QByteArray>
#include <QList>

#include "base/MessageSocket.h"
#include "imaging/CaptureMetadata.h"
#include "imaging/ImageError.h"
#include "imaging/ImageHeader.h"

namespace tarnovel {

/// What a photo is before a pixel of it is decoded.
struct PhotoFacts {
    ImageHeader header;
    CaptureMetadata metadata;
};

/// What the program asks of the decoder. The photo's descriptor travels beside the message, and after it that
/// of the slot where that is new.
struct DecoderRequest {
    /// `Forget` has no answer.
    enum class Kind : quint8 { Describe, Decode, Cancel, Forget };
    quint32 id = 0;
    Kind kind = Kind::Describe;
    /// The parts of the upright picture that are decoded into the slot, one after the other (see SlotLayout).
    QList<PicturePart> parts;
    /// Each piece of memory has a number of its own, which is never used again.
    quint32 slot = 0;
    /// The decoder has not seen the slot: it maps it before all else, and keeps it for the requests to come.
    bool slotIsNew = false;
    /// Slots that will not be used again.
    QList<quint32> forgotten;
};

/// What the decoder answers. The program takes nothing of it for granted.
struct DecoderReply {
    enum class Kind : quint8 { Ready, Described, Decoded, Failed, Cancelled };
    quint32 id = 0;
    Kind kind = Kind::Ready;
    PhotoFacts facts;
    /// Of each part, whether it has transparency.
    QList<bool> transparent;
    /// Of a failure.
    ImageError::Cause cause = ImageError::Cause::Damaged;
    /// Of a failure, its cause for the log; when ready, which locks the kernel does not have.
    QByteArray detail;
};

/// Goes up with every change of the messages, and is the id of the decoder's first one: a program may go on
/// running while a newer decoder is installed.
constexpr quint32 decoderProtocol = 2;

/// The longest message of either side, in bytes.
constexpr qsizetype longestDecoderMessage = longestMessage;
/// A request is for at most this many parts.
constexpr qsizetype mostDecoderParts = 12;
/// The decoder keeps at most this many slots mapped.
constexpr quint32 mostDecoderSlots = 16;

QByteArray encoded(const DecoderRequest &request);
QByteArray encoded(const DecoderReply &reply);

/// None for bytes that are no such message: too short, too long, or with values that do not exist.
std::optional<DecoderRequest> decodedRequest(const QByteArray &bytes);
std::optional<DecoderReply> decodedReply(const QByteArray &bytes);

/// Where the pictures of a request lie in its slot: one after the other, rows apart as those of pooled
/// images.
struct SlotLayout {
    explicit SlotLayout(const QList<PicturePart> &parts);

    QList<qint64> offsets;
    qint64 bytes = 0;
};

} // namespace tarnovel
