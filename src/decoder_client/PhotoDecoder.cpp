#include "decoder_client/PhotoDecoder.h"

#include <utility>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "base/Cancellation.h"
#include "base/Log.h"
#include "imaging/BufferPool.h"
#include "imaging/ImageLimits.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

using Outcome = ChildProcess::Outcome;
using std::chrono::milliseconds;

/// How long a decoder may take to end what is cancelled before it is ended itself.
constexpr milliseconds cancelPatience{100};
constexpr size_t mostRemembered = 1000;
/// A photo that has ended so many decoders is not tried again.
constexpr int mostDeaths = 2;
/// A decoder that did not start so often is not waited for again.
constexpr int mostFailedStarts = 2;

/// The decoder has ended in the middle of a request.
struct DecoderEnded {
    QByteArray how;
    /// It had worked for another photo before.
    bool hadServedAnother;
};

std::unique_ptr<ChildProcess> startedDecoder(const QString &program)
{
    std::unique_ptr<ChildProcess> process = ChildProcess::started(program);
    if (!process) {
        throw ImageError(ImageError::Cause::NoDecoder, "cannot be started: " + program.toUtf8());
    }
    return process;
}

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

QString helperProgram(const QString &name)
{
    const QString folder = QCoreApplication::applicationDirPath();
    // Tests and tools lie in folders of the build tree.
    for (const QString &place :
         {folder + u'/' + name,
          QDir(folder + u"/.."_s).filePath(QStringLiteral(TARNOVEL_LIBEXEC "/tarnovel/")) + name,
          folder + u"/../"_s + name}) {
        if (QFileInfo(place).isFile() && QFileInfo(place).isExecutable()) {
            return QFileInfo(place).canonicalFilePath();
        }
    }
    return {};
}

bool beginsAsJpeg(const RegularFile &photo)
{
    return photo.read(0, 3) == QByteArrayView("\xff\xd8\xff", 3);
}

} // namespace

QString decoderProgram()
{
    return helperProgram(u"tarnovel-decoder"_s);
}

QString jpegDecoderProgram()
{
    return helperProgram(u"tarnovel-jpeg-decoder"_s);
}

PhotoDecoder::PhotoDecoder() : PhotoDecoder(decoderProgram(), {}, jpegDecoderProgram()) {}

PhotoDecoder::PhotoDecoder(Spare spare)
    : m_program(decoderProgram()),
      m_jpegProgram(jpegDecoderProgram()),
      m_spareKind(spare),
      m_jpegAlone(!m_jpegProgram.isEmpty())
{
}

PhotoDecoder::PhotoDecoder(QString program, ChildProcess::Patience patience, QString jpegProgram)
    : m_program(std::move(program)),
      m_jpegProgram(std::move(jpegProgram)),
      m_patience(patience),
      m_jpegAlone(!m_jpegProgram.isEmpty())
{
}

PhotoDecoder::~PhotoDecoder() = default;

void PhotoDecoder::start(const std::stop_token &stop)
{
    if (m_process) {
        return;
    }
    m_mapped.clear();
    m_served.reset();
    while (m_dying.size() > 1) {
        m_dying.pop_front();
    }
    if (m_jpegAlone) {
        try {
            if (isStarted(startedDecoder(m_jpegProgram), stop)) {
                return;
            }
        } catch (const ImageError &error) {
            qCWarning(logDecoder) << error.what();
        }
        m_jpegAlone = false;
    }
    // A spare one may have ended while it waited.
    if (m_failedStarts < mostFailedStarts && ((m_spare && isStarted(std::exchange(m_spare, nullptr), stop)) ||
                                              isStarted(startedDecoder(m_program), stop))) {
        m_failedStarts = 0;
        return;
    }
    ++m_failedStarts;
    throw ImageError(ImageError::Cause::NoDecoder, "the decoder does not start: " + m_program.toUtf8());
}

void PhotoDecoder::chooseProgram(const RegularFile &photo)
{
    if (m_jpegAlone && !beginsAsJpeg(photo)) {
        m_jpegAlone = false;
        m_process.reset();
    }
}

bool PhotoDecoder::isStarted(std::unique_ptr<ChildProcess> process, const std::stop_token &stop)
{
    ++m_starts;
    QByteArray bytes;
    const Outcome outcome = process->receive(bytes, m_patience, stop);
    throwIfCancelled(stop);
    const std::optional<DecoderReply> ready = decodedReply(bytes);
    if (outcome != Outcome::Message || !ready || ready->kind != DecoderReply::Kind::Ready ||
        ready->id != decoderProtocol) {
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
        m_spare = ChildProcess::started(m_program);
    }
}

/// Sends the request to a decoder that lives, and waits.
DecoderReply PhotoDecoder::asked(const RegularFile &photo, DecoderRequest request,
                                 const PictureSlots::Lent &slot, const std::stop_token &stop)
{
    request.forgotten = m_slots.takeForgotten();
    // One that ended while it had nothing to do is no photo's fault.
    for (int round = 0; round < 3; ++round) {
        start(stop);
        request.id = ++m_lastId;
        std::vector<int> descriptors = {photo.descriptor()};
        if (slot.slot) {
            request.slot = slot.number;
            request.slotIsNew = !m_mapped.contains(slot.number);
            if (request.slotIsNew) {
                descriptors.push_back(slot.slot->descriptor());
            }
        }
        if (m_process->send(encoded(request), descriptors)) {
            return awaited(photo, request.id, stop);
        }
        qCWarning(logDecoder) << "the decoder had ended:" << m_process->end();
        m_process.reset();
    }
    throw ImageError(ImageError::Cause::NoDecoder, "the decoder was gone before it was asked");
}

DecoderReply PhotoDecoder::exchange(const RegularFile &photo, const DecoderRequest &request,
                                    const PictureSlots::Lent &slot, const std::stop_token &stop)
{
    throwIfCancelled(stop);
    if (const auto deaths = m_deaths.find(photo.identity());
        deaths != m_deaths.end() && deaths->second >= mostDeaths) {
        throw ImageError(ImageError::Cause::Damaged, "has ended the decoder before");
    }
    chooseProgram(photo);
    DecoderReply reply;
    try {
        reply = asked(photo, request, slot, stop);
        if (m_jpegAlone && reply.kind == DecoderReply::Kind::Failed &&
            reply.cause == ImageError::Cause::NoDecoder) {
            m_jpegAlone = false;
            m_process.reset();
            reply = asked(photo, request, slot, stop);
        }
    } catch (const DecoderEnded &ended) {
        // What another photo has broken in it may have come to light only now.
        if (!ended.hadServedAnother) {
            lost(photo.identity(), ended.how, ImageError::Cause::Damaged);
        }
        qCWarning(logDecoder) << "the decoder" << ended.how
                              << "after another photo; this one is tried in a new one";
        m_process.reset();
        try {
            reply = asked(photo, request, slot, stop);
        } catch (const DecoderEnded &again) {
            lost(photo.identity(), again.how, ImageError::Cause::Damaged);
        }
    }
    m_served = photo.identity();
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
        throw DecoderEnded{"ended: " + m_process->end(), m_served && *m_served != photo.identity()};
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
    ChildProcess::Patience brief = m_patience;
    brief.wait = cancelPatience;
    const Outcome outcome =
        !slow && m_process->send(encoded(cancel)) ? m_process->receive(bytes, brief, {}) : Outcome::TimedOut;
    const std::optional<DecoderReply> reply =
        outcome == Outcome::Message ? decodedReply(bytes) : std::nullopt;
    if (outcome == Outcome::Ended) {
        qCWarning(logDecoder) << "the decoder ended while it was told to stop:" << m_process->end();
    }
    if (!reply || reply->id != id) {
        // Its memory takes the kernel a while: whoever asks next does not wait for that.
        m_process->kill();
        m_dying.push_back(std::move(m_process));
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
