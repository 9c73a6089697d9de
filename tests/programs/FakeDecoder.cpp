// Takes the decoder's place and behaves as TARNOVEL_FAKE_DECODER says: as one that a hostile photo has taken
// over, or broken.
#include <chrono>
#include <string_view>
#include <thread>

#include <stdlib.h>
#include <unistd.h>

#include "base/MessageSocket.h"
#include "decoder_protocol/DecoderMessage.h"

using namespace tarnovel;

namespace {

constexpr int programSocket = 3;

[[noreturn]] void hang()
{
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

[[noreturn]] void spin()
{
    for (volatile unsigned turns = 0;;) {
        turns = turns + 1;
    }
}

DecoderReply answerTo(const DecoderRequest &request, std::string_view kind)
{
    DecoderReply reply;
    reply.id = kind == "another id" ? request.id + 1 : request.id;
    if (request.kind == DecoderRequest::Kind::Describe) {
        reply.kind = DecoderReply::Kind::Described;
        reply.facts.header.storedSize = kind == "giant" ? QSize(1'000'000'000, 1'000'000'000) : QSize(40, 30);
        reply.facts.header.orientation = kind == "turned eleven ways" ? 11 : 1;
        reply.facts.metadata.focalLengthMm = -1;
        reply.facts.metadata.make = QString(5'000, u'm');
    } else {
        reply.kind = kind == "another answer" ? DecoderReply::Kind::Described : DecoderReply::Kind::Decoded;
        reply.facts.header.storedSize = QSize(40, 30);
        reply.transparent = QList<bool>(kind == "too many" ? 1000 : request.parts.size(), false);
    }
    return reply;
}

} // namespace

int main()
{
    const char *named = getenv("TARNOVEL_FAKE_DECODER");
    const std::string_view kind = named != nullptr ? named : "";
    if (kind == "does not start") {
        return 1;
    }
    if (kind == "hangs at once") {
        hang();
    }
    DecoderReply ready;
    ready.id = kind == "of another version" ? decoderProtocol + 1 : decoderProtocol;
    sendMessage(programSocket, encoded(ready));
    for (;;) {
        ReceivedMessage message;
        if (receiveMessage(programSocket, message, 2) != Receiving::Message) {
            return 0;
        }
        const std::optional<DecoderRequest> request = decodedRequest(message.bytes);
        if (!request || kind == "dies") {
            abort();
        }
        if (kind == "hangs" ||
            (kind == "hangs at pictures" && request->kind == DecoderRequest::Kind::Decode)) {
            hang();
        }
        if (kind == "spins") {
            spin();
        }
        const QByteArray reply =
            kind == "garbage" ? QByteArray(5'000, 'x') : encoded(answerTo(*request, kind));
        // Descriptors that nobody asked for are no gift.
        sendMessage(programSocket, reply, {STDERR_FILENO});
        if (kind == "ends afterwards") {
            return 0;
        }
    }
}
