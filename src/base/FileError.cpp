#include "base/FileError.h"

#include <system_error>
#include <utility>

namespace tarnovel {

FileError::FileError(QString path, int code, FileAccess access)
    : m_path(std::move(path)),
      m_code(code),
      m_access(access),
      m_what((m_path + QStringLiteral(": ") + reason()).toUtf8())
{
}

QString FileError::reason() const
{
    return QString::fromStdString(std::generic_category().message(m_code));
}

} // namespace tarnovel
