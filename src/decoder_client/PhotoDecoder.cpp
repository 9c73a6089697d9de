#include "decoder_client/PhotoDecoder.h"

#include <utility>

#include <QCoreApplication>
#include <QFileInfo>

#include "base/Cancellation.h"
#include "base/Log.h"
#include "imaging/BufferPool.h"
#include "imaging/ImageLimits.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

using Outcome = DecoderProcess::Outcome;
using std::chrono::milliseconds;

/// How long a decoder may take to end what is cancelled before it is ended itself.
constexpr milliseconds cancelPatience{100};
constexpr size_t mostRemembered = 1000;
/// A photo that has ended so many decoders is not tried again.
constexpr int mostDeaths = 2;

/// The libraries of these formats hear of a cancellation after half a second and more.
bool isSlowToCancel(PictureFormat format)
{
    return format == PictureFormat::Heif || format == PictureFormat::Avif || format == PictureFormat::WebP;
}

/// A picture in a slot, which stays taken as long as there is a copy of it.
QImage lentImage(const std::shared_ptr<PictureSlot> &slot, qint64 offset, QSize size, bool transparent)
{
    const QImage::Format format = transparent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    const auto giveBack = [](void *holder) { delete static_cast<std::shared_ptr<PictureSlot> *>(holder); };
    return QImage(slot->at(offset), size.width(), size.height(), pooledStride(size.width(), format), format,
                  giveBack, new std::shared_ptr<PictureSlot>(slot));
}

} // namespace

QString decoderProgram()
{
    const QString folder = QCoreApplication::applicationDirPath();
    const QString name = u"tarnovel-decoder"_s;
    // Tests and tools lie in folders of the build tree.
    for (const QString &place :
         {folder + u'/' + name, folder + u"/../libexec/tarnovel/"_s + name, folder + u"/../"_s + name}) {
        if (QFileInfo(place).isFile() && QFileInfo(place).isExecutable()) {
            return QFileInfo(place).canonicalFilePath();
        }
    }
    return {};
}

PhotoDecoder::PhotoDecoder() : PhotoDecoder(decoderProgram()) {}

PhotoDecoder::PhotoDecoder(Spare spare) : m_program(decoderProgram()), m_spareKind(spare) {}

PhotoDecoder::PhotoDecoder(QString program, DecoderProcess::Patience patience)
    : m_program(std::move(program)), m_patience(patience)
{
}

PhotoDecoder::~PhotoDecoder() = default;

void PhotoDecoder::start()
{
    if (m_process) {
        return;
    }
    m_mapped.clear();
    // A spare one may have ended while it waited.
    if ((m_spare && isStarted(std::exchange(m_spare, nullptr))) ||
        isStarted(std::make_unique<DecoderProcess>(m_program))) {
        return;
    }
    throw ImageError(ImageError::Cause::NoDecoder, "the decoder does not start: " + m_program.toUtf8());
}

bool PhotoDecoder::isStarted(std::unique_ptr<DecoderProcess> process)
{
    ++m_starts;
    QByteArray bytes;
    const Outcome outcome = process->receive(bytes, m_patience, {});
    const std::optional<DecoderReply> ready = decodedReply(bytes);
    if (outcome != Outcome::Message || !ready || ready->kind != DecoderReply::Kind::Ready) {
        qCWarning(logDecoder) << "the decoder does not start:" << process->end();
        return false;
    }
    if (!ready->detail.isEmpty()) {
        qCInfo(logDecoder) << "the decoder runs without these locks of the kernel:" << ready->detail;
    }
    m_process = std::move(process);
    return true;
}

void PhotoDecoder::rest()
{
    m_slots.drop();
    DecoderRequest request;
    request.kind = DecoderRequest::Kind::Forget;
    request.forgotten = m_slots.takeForgotten();
    if (m_process) {
        m_process->send(encoded(request));
    }
}

const PhotoFacts &PhotoDecoder::facts(const RegularFile &photo, const std::stop_token &stop)
{
    if (const auto known = m_facts.find(photo.identity()); known != m_facts.end()) {
        return known->second;
    }
    DecoderRequest request;
    request.kind = DecoderRequest::Kind::Describe;
    const DecoderReply reply = exchange(photo, request, {}, stop);
    if (reply.kind != DecoderReply::Kind::Described) {
        lost(photo.identity(), "an answer to another question", ImageError::Cause::Damaged);
    }
    checkPictureSize(reply.facts.header.storedSize);
    if (m_facts.size() >= mostRemembered) {
        m_facts.clear();
    }
    return m_facts.insert_or_assign(photo.identity(), reply.facts).first->second;
}

QList<QImage> PhotoDecoder::decode(const RegularFile &photo, const QList<PicturePart> &parts,
                                   const std::stop_token &stop)
{
    throwIfCancelled(stop);
    for (const PicturePart &part : parts) {
        checkPicturePart(part);
    }
    qCDebug(logDecoder) << "decoding" << parts.size() << "parts, the first to" << parts.first().size;
    const SlotLayout layout(parts);
    const PictureSlots::Lent lent = m_slots.take(layout.bytes);
    DecoderRequest request;
    request.kind = DecoderRequest::Kind::Decode;
    request.parts = parts;
    prepareSpare(photo.identity());
    const DecoderReply reply = exchange(photo, request, lent, stop);
    if (reply.kind != DecoderReply::Kind::Decoded || reply.transparent.size() != parts.size()) {
        lost(photo.identity(), "an answer to another question", ImageError::Cause::Damaged);
    }
    // Whatever else comes back, the slot may not have been mapped.
    m_mapped.insert(lent.number);
    QList<QImage> images;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        images.append(lentImage(lent.slot, layout.offsets[i], parts[i].size, reply.transparent[i]));
    }
    return images;
}

void PhotoDecoder::prepareSpare(const FileIdentity &photo)
{
    const auto known = m_facts.find(photo);
    if (m_spareKind == Spare::WhileSlow && !m_spare && known != m_facts.end() &&
        isSlowToCancel(known->second.header.format)) {
        try {
            m_spare = std::make_unique<DecoderProcess>(m_program);
        } catch (const ImageError &error) {
            qCInfo(logDecoder) << "no spare decoder:" << error.what();
        }
    }
}

DecoderReply PhotoDecoder::exchange(const RegularFile &photo, DecoderRequest request,
                                    const PictureSlots::Lent &slot, const std::stop_token &stop)
{
    throwIfCancelled(stop);
    if (const auto deaths = m_deaths.find(photo.identity());
        deaths != m_deaths.end() && deaths->second >= mostDeaths) {
        throw ImageError(ImageError::Cause::Damaged, "has ended the decoder before");
    }
    const bool isFresh = !m_process;
    start();
    request.id = ++m_lastId;
    std::vector<int> descriptors = {photo.descriptor()};
    if (slot.slot) {
        request.slot = slot.number;
        request.slotIsNew = !m_mapped.contains(slot.number);
        if (request.slotIsNew) {
            descriptors.push_back(slot.slot->descriptor());
        }
    }
    request.forgotten = m_slots.takeForgotten();
    if (!m_process->send(encoded(request), descriptors)) {
        if (isFresh) {
            m_process.reset();
            throw ImageError(ImageError::Cause::NoDecoder, "the decoder was gone before it was asked");
        }
        // It ended while it had nothing to do: no photo's fault.
        qCWarning(logDecoder) << "the decoder had ended:" << m_process->end();
        m_process.reset();
        return exchange(photo, request, slot, stop);
    }
    const DecoderReply reply = awaited(photo, request.id, stop);
    switch (reply.kind) {
    case DecoderReply::Kind::Failed:
        throw ImageError(reply.cause, reply.detail);
    case DecoderReply::Kind::Cancelled:
        throw OperationCancelled();
    case DecoderReply::Kind::Ready:
    case DecoderReply::Kind::Described:
    case DecoderReply::Kind::Decoded:
        break;
    }
    return reply;
}

DecoderReply PhotoDecoder::awaited(const RegularFile &photo, quint32 id, const std::stop_token &stop)
{
    using Cause = ImageError::Cause;
    QByteArray bytes;
    switch (m_process->receive(bytes, m_patience, stop)) {
    case Outcome::Message:
        break;
    case Outcome::Stopped:
        cancelRequest(photo.identity(), id);
    case Outcome::Ended:
        lost(photo.identity(), "ended: " + m_process->end(), Cause::Damaged);
    case Outcome::Hung:
    case Outcome::TimedOut:
        lost(photo.identity(), "hangs", Cause::Damaged);
    case Outcome::Exhausted:
        lost(photo.identity(), "takes too long", Cause::TooLarge);
    }
    const std::optional<DecoderReply> reply = decodedReply(bytes);
    if (!reply || reply->id != id) {
        lost(photo.identity(), "answers nonsense", Cause::Damaged);
    }
    return *reply;
}

/// The picture is not wanted any more, and the next one is not to wait for it.
void PhotoDecoder::cancelRequest(const FileIdentity &photo, quint32 id)
{
    const auto known = m_facts.find(photo);
    const bool slow = known == m_facts.end() || isSlowToCancel(known->second.header.format);
    DecoderRequest cancel;
    cancel.kind = DecoderRequest::Kind::Cancel;
    cancel.id = id;
    QByteArray bytes;
    DecoderProcess::Patience brief = m_patience;
    brief.wait = cancelPatience;
    const bool answered =
        !slow && m_process->send(encoded(cancel)) && m_process->receive(bytes, brief, {}) == Outcome::Message;
    const std::optional<DecoderReply> reply = answered ? decodedReply(bytes) : std::nullopt;
    if (!reply || reply->id != id) {
        m_process.reset();
    }
    throw OperationCancelled();
}

/// The decoder is of no use any more. Whoever asks next gets another one.
void PhotoDecoder::lost(const FileIdentity &photo, const QByteArray &why, ImageError::Cause cause)
{
    if (m_deaths.size() >= mostRemembered) {
        m_deaths.clear();
    }
    ++m_deaths[photo];
    qCWarning(logDecoder) << "the decoder" << why;
    m_process.reset();
    throw ImageError(cause, "the decoder " + why);
}

} // namespace tarnovel
