#include "model/Signature.h"

namespace tarnovel {

namespace {

constexpr SignaturePlace absent{0.42, 0.5, 0.9};

} // namespace

SignaturePlace signaturePlace(const FrameSettings &settings)
{
    return {settings.handwritingWidth.value_or(absent.width), settings.handwritingX.value_or(absent.x),
            settings.handwritingY.value_or(absent.y)};
}

void placeSignature(FrameSettings &settings, const SignaturePlace &place)
{
    settings.handwritingWidth = place.width;
    settings.handwritingX = place.x;
    settings.handwritingY = place.y;
}

FrameSettings withSignature(FrameSettings settings, const QString &file, double aspect)
{
    settings.handwritingFile = file;
    settings.handwritingAspect = aspect;
    placeSignature(settings, signatureAsWritten);
    return settings;
}

FrameSettings withoutSignature(FrameSettings settings)
{
    settings.handwritingFile.reset();
    settings.handwritingAspect.reset();
    settings.handwritingX.reset();
    settings.handwritingY.reset();
    settings.handwritingWidth.reset();
    return settings;
}

} // namespace tarnovel
