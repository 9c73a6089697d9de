#pragma once

#include <optional>
#include <set>

#include <QByteArray>
#include <QList>
#include <QSizeF>
#include <QString>
#include <QUuid>

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

/// The compact document of a session.
QByteArray writeSession(const Session &session);

/// Throws a JsonError with its path for anything that is missing or malformed.
Session readSession(const QByteArray &document);

} // namespace tarnovel
