#include "cli/FailureCode.h"

#include <cerrno>

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

QString failureCode(const FileError &error)
{
    const bool reading = error.access() == FileAccess::Read;
    switch (error.code()) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
        return reading ? u"missing"_s : u"write"_s;
    case EISDIR:
        return reading ? u"folder"_s : u"write"_s;
    case EACCES:
    case EPERM:
        return u"permission"_s;
    case ENOSPC:
    case EDQUOT:
        return u"no-space"_s;
    default:
        return reading ? u"unreadable"_s : u"write"_s;
    }
}

QString failureCode(const PipelineFailure &failure)
{
    if (failure.trouble()) {
        return failureCode(*failure.trouble());
    }
    if (failure.fault()) {
        switch (*failure.fault()) {
        case PictureFault::SmallPreview:
            return u"small-preview"_s;
        case PictureFault::TooLarge:
            return u"too-large"_s;
        case PictureFault::Damaged:
            return u"damaged"_s;
        case PictureFault::NoDecoder:
            return u"unreadable"_s;
        }
    }
    switch (failure.error()) {
    case PipelineError::Unreadable:
        return u"unreadable"_s;
    case PipelineError::TooLarge:
        return u"too-large"_s;
    case PipelineError::Write:
        return u"write"_s;
    case PipelineError::FileSize:
        return u"file-size"_s;
    }
    return {};
}

} // namespace tarnovel::cli
