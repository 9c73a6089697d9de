#pragma once

#include <QList>
#include <QString>

#include "editor/EditorModel.h"
#include "language/FieldPattern.h"
#include "pipeline/ExportOptions.h"

namespace tarnovel {

/// What the user chose in an export panel or sheet.
struct ExportChoices {
    /// 1080 is a short edge, 4096 a long edge, 0 the source's size.
    int resolution = 4096;
    bool png = false;
    /// 0 is no limit.
    double maxMB = 0;
    /// The whole set instead of the selected photo.
    bool all = true;
    /// How files are called, as typed; empty for the default.
    QString name = {};

    /// What the panel last used. The sheet has no memory: it starts with a short edge of 1080.
    static ExportChoices stored(const Preferences &preferences);
    static ExportChoices forSheet();
    void store(Preferences &preferences) const;

    ExportOptions options() const;
    FieldPattern namePattern() const;
    /// The size as names of files call it: "1080", "4096" or "original".
    QString sizeName() const;
    /// The photos of a run, in the session's order.
    QList<PhotoItem> photos(const EditorModel &model) const;
};

/// The texts of the choices, in the current language.
namespace ExportTexts {

struct Choice {
    double value;
    QString label;
};

QString sizeGroup();
QList<Choice> sizes();
QString formatGroup();
QString limitGroup();
QList<Choice> limits();

/// What the start button reads for this many photos.
QString startButton(qsizetype count);
QString progress(int done, int total);
QString cancelButton();
QString cancelled(qsizetype written);
QString failed(const QString &description);
/// The heading of a summary.
QString exported(qsizetype count);
QString privacy();

} // namespace ExportTexts

} // namespace tarnovel
