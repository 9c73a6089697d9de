#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>

#include "editor/EditorModel.h"
#include "support/Photo24.h"

namespace tarnovel::bench {

/// A library of its own, and an editor on it.
struct LibraryWorld {
    explicit LibraryWorld(EditorModel::Load load)
        : model({pipeline, writer, preferences, clock, library}, load)
    {
    }

    QTemporaryDir folder;
    QString library = folder.filePath(QStringLiteral("library"));
    bool made = QDir().mkpath(library);
    SystemClock clock;
    Preferences preferences{folder.filePath(QStringLiteral("preferences.ini"))};
    ImagePipeline pipeline{library, folder.filePath(QStringLiteral("temporary"))};
    SessionWriter writer{library};
    EditorModel model;

    /// Puts a photo of 24 megapixels into the library and the session.
    void append(const QString &name)
    {
        writePhoto24(library + u'/' + name);
        PhotoItem photo;
        photo.id = QUuid::createUuid();
        photo.file = photo.name = name;
        photo.width = photoSize.width();
        photo.height = photoSize.height();
        model.append({photo});
    }
};

template<typename Condition>
void waitFor(Condition condition)
{
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
}

} // namespace tarnovel::bench
