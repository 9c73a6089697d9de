#pragma once

#include <optional>

#include <QByteArray>

#include "base/OwnedDescriptor.h"

namespace tarnovel {

/// Stream sockets between programs of one machine. Their names are the kernel's own: no file stands for them,
/// and they go with the program that listens.

/// A socket that callers of this name reach. Closed, with errno, where the name is taken (EADDRINUSE) or the
/// kernel refuses.
OwnedDescriptor listenLocally(const QByteArray &name);
/// The next who has called; closed when nobody has. Neither call nor its reading waits.
OwnedDescriptor acceptedCaller(const OwnedDescriptor &server);
/// A connection to whoever listens; closed when nobody does, or has no room for a caller within this time.
OwnedDescriptor calledLocally(const QByteArray &name, int waitMs);

/// Whether the program at the other end belongs to this user.
bool isOwnUser(const OwnedDescriptor &socket);

/// Sends everything, if the other end takes it within this time.
bool sendAll(const OwnedDescriptor &socket, const QByteArray &bytes, int waitMs);
/// What has come by now, perhaps nothing; none once the other end has gone.
std::optional<QByteArray> receivedNow(const OwnedDescriptor &socket);
/// What comes first within this time; empty when nothing does, or the other end goes.
QByteArray receivedWithin(const OwnedDescriptor &socket, int waitMs);

} // namespace tarnovel
