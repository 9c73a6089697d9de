#pragma once

#include <optional>
#include <set>

#include <QByteArray>
#include <QList>
#include <QSizeF>
#include <QString>
#include <QUuid>

#include "base/Json.h"
#include "base/JsonDate.h"
#include "model/FrameSettings.h"

namespace tarnovel {

/// One photo of the session and its frame.
struct PhotoItem {
    QUuid id;
    /// Name in the library folder.
    QString file;
    /// What the user calls it: the name that the photo had when it was imported.
    QString name;
    /// Upright pixels as imported.
    double width = 0;
    double height = 0;
    FrameSettings settings;
    bool operator==(const PhotoItem &) const = default;

    QSizeF size() const { return {width, height}; }
};

/// A style that the user saved under a name.
struct SavedPreset {
    QUuid id;
    QString name;
    FrameSettings settings;
    std::optional<SecondsSince2001> lastUsed;
    bool operator==(const SavedPreset &) const = default;
};

/// Everything the user works on.
struct Session {
    /// In the order in which the user sees them.
    QList<PhotoItem> photos;
    std::optional<QUuid> selected;
    QList<SavedPreset> presets;
    /// The most recent style, offered for the next import.
    std::optional<FrameSettings> lastStyle;
    bool operator==(const Session &) const = default;

    /// Every file of the library folder that the document needs.
    std::set<QString> referencedFiles() const;
};

/// A stored name that leads out of the library folder names nothing.
void dropForeignFiles(FrameSettings &settings);

/// The compact document of a session.
QByteArray writeSession(const Session &session);

/// Throws a JsonError with its path for anything that is missing or malformed.
Session readSession(const QByteArray &document);

/// What can be read of a document that is damaged, or of another version.
struct SalvagedSession {
    Session session;
    /// Photos and styles that the document speaks of and that cannot be brought back: their record or their
    /// file is gone. What a fault in the document hides is not among them.
    qsizetype lostPhotos = 0;
    qsizetype lostPresets = 0;
    /// Photos and styles some fields of which could not be read and have their defaults.
    qsizetype changed = 0;
    /// The document ends in a fault: it may have held more.
    bool cutShort = false;
    /// Photos and styles that the session at hand has already.
    qsizetype known = 0;

    bool whole() const { return lostPhotos == 0 && lostPresets == 0 && changed == 0 && !cutShort; }
};

/// What can be read of a session's value, photo by photo and field by field.
SalvagedSession salvageSession(const Json &document);

} // namespace tarnovel
