#include "base/FileTrouble.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace tarnovel {

namespace {

int readingError(const QString &path)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        // Names come decoded; a byte that is no UTF-8 stands in them as this character.
        return errno == ENOENT && path.contains(QChar::ReplacementCharacter) ? EILSEQ : errno;
    }
    struct stat status = {};
    const int failed = fstat(descriptor, &status) == 0 ? 0 : errno;
    close(descriptor);
    if (failed != 0) {
        return failed;
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    }
    return status.st_size == 0 ? ENODATA : 0;
}

} // namespace

std::optional<FileError> fileTrouble(const QString &path)
{
    const int code = readingError(path);
    return code == 0 ? std::nullopt : std::optional(FileError(path, code, FileAccess::Read));
}

} // namespace tarnovel
