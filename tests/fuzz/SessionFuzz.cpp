// The session's document: what is read can be written and read again, and what is damaged is salvaged or
// refused.

#include <cstdlib>

#include "base/Json.h"
#include "model/Session.h"

using namespace tarnovel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    const QByteArray document(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(count));
    try {
        const Session session = readSession(document);
        if (readSession(writeSession(session)) != session) {
            std::abort();
        }
    } catch (const JsonError &) {
    }
    salvageSession(parseJsonUpToFault(document).value);
    return 0;
}
