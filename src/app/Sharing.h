#pragma once

#include <functional>

#include <QStringList>

class QObject;

/// Handing finished files to the rest of the desktop.
namespace tarnovel::app::Sharing {

/// Puts the files on the clipboard, to be pasted into a folder or a message.
void copyFiles(const QStringList &files);

/// Opens the file manager on the folder, with the files marked where it can do that.
void showInFolder(const QString &folder, const QStringList &files);

/// Asks whether the desktop has a portal that writes e-mails; `answered` is called with a yes, later, unless
/// `asker` has gone.
void askForMail(QObject *asker, std::function<void()> answered);
/// Opens a new message with the files attached.
void sendMail(const QStringList &files);

} // namespace tarnovel::app::Sharing
