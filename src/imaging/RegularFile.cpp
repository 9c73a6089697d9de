#include "imaging/RegularFile.h"

#include <algorithm>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

int opened(const QString &path)
{
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) {
        throw ImageError(ImageError::Cause::Missing, "cannot be opened");
    }
    return descriptor;
}

qint64 nanoseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

RegularFile::RegularFile(const QString &path) : RegularFile(opened(path)) {}

RegularFile::RegularFile(int descriptor) : m_descriptor(descriptor)
{
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(m_descriptor);
        throw ImageError(ImageError::Cause::Missing, "not a regular file");
    }
    m_identity = {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
                  nanoseconds(status.st_ctim)};
}

RegularFile::~RegularFile()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

RegularFile::RegularFile(RegularFile &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)), m_identity(other.m_identity)
{
}

RegularFile &RegularFile::operator=(RegularFile &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_identity, other.m_identity);
    return *this;
}

QByteArray RegularFile::read(qint64 offset, qint64 count) const
{
    if (offset < 0 || offset >= size() || count <= 0) {
        return {};
    }
    QByteArray bytes(std::min(count, size() - offset), Qt::Uninitialized);
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t got =
            pread(m_descriptor, bytes.data() + done, static_cast<size_t>(bytes.size() - done), offset + done);
        if (got <= 0) {
            break;
        }
        done += got;
    }
    bytes.truncate(done);
    return bytes;
}

} // namespace tarnovel
