#include <gtest/gtest.h>

#include "decoder_protocol/DecoderMessage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

DecoderReply described()
{
    DecoderReply reply;
    reply.id = 7;
    reply.kind = DecoderReply::Kind::Described;
    reply.facts.header = {PictureFormat::WebP, {4000, 3000}, 6};
    reply.facts.metadata.make = u"Maker"_s;
    reply.facts.metadata.fNumber = 2.8;
    reply.facts.metadata.iso = 400;
    return reply;
}

TEST(DecoderMessage, ArrivesAsItWasSentOrNotAtAll)
{
    DecoderRequest request;
    request.id = 3;
    request.kind = DecoderRequest::Kind::Decode;
    request.parts = {{{1, 2, 3, 4}, {5, 6}}, {{0, 0, 9, 9}, {3, 3}}};
    request.slot = 12;
    request.slotIsNew = true;
    request.forgotten = {1, 2};
    const std::optional<DecoderRequest> asked = decodedRequest(encoded(request));
    ASSERT_TRUE(asked);
    EXPECT_EQ(encoded(*asked), encoded(request));
    const std::optional<DecoderReply> told = decodedReply(encoded(described()));
    ASSERT_TRUE(told);
    EXPECT_EQ(encoded(*told), encoded(described()));
    for (const QByteArray &whole : {encoded(request), encoded(described())}) {
        for (qsizetype length = 0; length < whole.size(); ++length) {
            EXPECT_FALSE(decodedRequest(whole.left(length))) << length;
            EXPECT_FALSE(decodedReply(whole.left(length))) << length;
        }
        EXPECT_FALSE(decodedRequest(whole + '\0'));
        EXPECT_FALSE(decodedReply(whole + '\0'));
    }
}

TEST(DecoderMessage, HoldsNoValueThatDoesNotExist)
{
    DecoderReply reply = described();
    for (const int format : {-5, 6}) {
        reply.facts.header.format = static_cast<PictureFormat>(format);
        EXPECT_FALSE(decodedReply(encoded(reply))) << format;
    }
    for (const int orientation : {0, 9, -1}) {
        reply = described();
        reply.facts.header.orientation = orientation;
        EXPECT_FALSE(decodedReply(encoded(reply))) << orientation;
    }
    reply = described();
    reply.cause = static_cast<ImageError::Cause>(-7);
    EXPECT_FALSE(decodedReply(encoded(reply)));
    reply = described();
    reply.transparent = QList<bool>(mostDecoderParts + 1, true);
    EXPECT_FALSE(decodedReply(encoded(reply)));
    DecoderRequest request;
    request.parts = QList<PicturePart>(mostDecoderParts + 1);
    EXPECT_FALSE(decodedRequest(encoded(request)));
}

} // namespace
} // namespace tarnovel
