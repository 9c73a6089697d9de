#include "decoder_protocol/DecoderMessage.h"

#include <algorithm>
#include <cmath>

#include <QDataStream>
#include <QIODevice>

#include "imaging/BufferPool.h"

namespace tarnovel {

static QDataStream &operator<<(QDataStream &stream, const PicturePart &part)
{
    return stream << part.region << part.size;
}

static QDataStream &operator>>(QDataStream &stream, PicturePart &part)
{
    return stream >> part.region >> part.size;
}

namespace {

/// A list of at most `most` items. The count that stands before it is no reason to take memory.
template<typename Value>
void readList(QDataStream &stream, QList<Value> &list, quint32 most)
{
    quint32 count = 0;
    stream >> count;
    if (count > most) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        Value value{};
        stream >> value;
        list.append(value);
    }
}

constexpr quint32 mostForgotten = 1000;
constexpr qsizetype longestDetail = 4'000;
constexpr qsizetype longestText = 1'000;

template<typename Enum>
bool isWithin(Enum value, Enum last)
{
    return static_cast<qint64>(value) >= 0 && value <= last;
}

QDataStream &operator<<(QDataStream &stream, const std::optional<double> &value)
{
    return stream << value.has_value() << value.value_or(0);
}

/// Only finite numbers from zero are ones that a camera can have meant.
QDataStream &operator>>(QDataStream &stream, std::optional<double> &value)
{
    bool there = false;
    double number = 0;
    stream >> there >> number;
    value = there && std::isfinite(number) && number >= 0 ? std::optional(number) : std::nullopt;
    return stream;
}

QDataStream &operator<<(QDataStream &stream, const PhotoFacts &facts)
{
    const CaptureMetadata &taken = facts.metadata;
    stream << facts.header.format << facts.header.storedSize << facts.header.orientation << taken.make
           << taken.model << taken.lens << taken.focalLengthMm << taken.fNumber << taken.exposureSeconds
           << taken.iso.has_value() << taken.iso.value_or(0);
    return stream << taken.originalDate;
}

QDataStream &operator>>(QDataStream &stream, PhotoFacts &facts)
{
    CaptureMetadata &taken = facts.metadata;
    bool hasIso = false;
    qint64 iso = 0;
    stream >> facts.header.format >> facts.header.storedSize >> facts.header.orientation >> taken.make >>
        taken.model >> taken.lens >> taken.focalLengthMm >> taken.fNumber >> taken.exposureSeconds >>
        hasIso >> iso >> taken.originalDate;
    taken.iso = hasIso && iso >= 0 ? std::optional(iso) : std::nullopt;
    for (QString *text : {&taken.make, &taken.model, &taken.lens, &taken.originalDate}) {
        text->truncate(longestText);
    }
    return stream;
}

bool isPlausible(const ImageHeader &header)
{
    return isWithin(header.format, PictureFormat::Tiff) && header.orientation >= 1 && header.orientation <= 8;
}

template<typename Write>
QByteArray written(Write write)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    write(stream);
    return bytes;
}

/// Whether the bytes hold just what `read` takes.
template<typename Read>
bool isReadFrom(const QByteArray &bytes, Read read)
{
    if (bytes.size() > longestDecoderMessage) {
        return false;
    }
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_6_4);
    read(stream);
    return stream.status() == QDataStream::Ok && stream.atEnd();
}

} // namespace

QByteArray encoded(const DecoderRequest &request)
{
    return written([&](QDataStream &stream) {
        stream << request.id << request.kind << request.parts << request.slot << request.slotIsNew
               << request.forgotten;
    });
}

QByteArray encoded(const DecoderReply &reply)
{
    return written([&](QDataStream &stream) {
        stream << reply.id << reply.kind << reply.facts << reply.transparent << reply.cause
               << reply.detail.left(longestDetail);
    });
}

std::optional<DecoderRequest> decodedRequest(const QByteArray &bytes)
{
    DecoderRequest request;
    const bool whole = isReadFrom(bytes, [&](QDataStream &stream) {
        stream >> request.id >> request.kind;
        readList(stream, request.parts, mostDecoderParts);
        stream >> request.slot >> request.slotIsNew;
        readList(stream, request.forgotten, mostForgotten);
    });
    const bool known = isWithin(request.kind, DecoderRequest::Kind::Forget);
    return whole && known ? std::optional(request) : std::nullopt;
}

std::optional<DecoderReply> decodedReply(const QByteArray &bytes)
{
    DecoderReply reply;
    const bool whole = isReadFrom(bytes, [&](QDataStream &stream) {
        stream >> reply.id >> reply.kind >> reply.facts;
        readList(stream, reply.transparent, mostDecoderParts);
        stream >> reply.cause >> reply.detail;
    });
    const bool known = isWithin(reply.kind, DecoderReply::Kind::Cancelled) &&
                       isWithin(reply.cause, ImageError::Cause::NoDecoder) &&
                       (reply.kind != DecoderReply::Kind::Described || isPlausible(reply.facts.header));
    return whole && known ? std::optional(reply) : std::nullopt;
}

SlotLayout::SlotLayout(const QList<PicturePart> &parts)
{
    for (const PicturePart &part : parts) {
        offsets.append(bytes);
        bytes += qint64(pooledStride(part.size.width(), QImage::Format_RGB32)) * part.size.height();
    }
}

} // namespace tarnovel
