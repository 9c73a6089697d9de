#pragma once

#include <QByteArrayList>

namespace tarnovel {

/// Opens all that decoding will need later, when nothing can be opened any more: libraries, their modules,
/// their threads' resources.
void prepareDecoder();

/// Reads photos for the program at the other end of the socket until that goes. One thread hears the socket,
/// so that a request can be cancelled; one decodes. `missing` are the locks that could not be closed.
[[noreturn]] void serveDecoder(int socket, const QByteArrayList &missing);

} // namespace tarnovel
