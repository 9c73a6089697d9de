#pragma once

#include <optional>

#include <QStringList>

namespace tarnovel::cli {

class Interruption;

/// What `tarnovel collage` was asked for, as typed.
struct CollageRequest {
    QStringList photos;
    QString file;
    std::optional<QString> layout;
    std::optional<QString> aspect;
    std::optional<QString> gap;
    std::optional<QString> margin;
    std::optional<QString> radius;
    std::optional<QString> background;
    QStringList frames;
    QStringList pans;
    QStringList zooms;
    QStringList ratios;
    std::optional<QString> stock;
    std::optional<QString> edgeText;
    std::optional<QString> startNumber;
    bool noNumbers = false;
    /// What the file's ending says when absent.
    std::optional<QString> format;
    /// The long edge in pixels.
    std::optional<QString> size;
    std::optional<QString> maxMb;
    bool json = false;
    bool quiet = false;
};

/// Returns the exit status. Throws a UsageError before anything is written.
int runCollage(const CollageRequest &request, const Interruption &interruption);

/// The layouts for this many photos, in order. Returns the exit status.
int runLayouts(const QString &count, bool json);

} // namespace tarnovel::cli
