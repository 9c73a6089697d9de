#pragma once

#include <memory>
#include <stdexcept>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>

#include "app/Appearance.h"
#include "app/window/MainWindow.h"
#include "export/PhotoLibrary.h"

namespace tarnovel::test {

/// The whole editor over a folder: its library, preferences and exports are in there, and a second world over
/// the same folder is the next start of the program.
class AppWorld {
public:
    /// What the choosers of this world answer.
    struct Answers {
        QStringList photos;
        QStringList picture;
        QString folder;
    };

    /// Thumbnails are kept from start to start where they have a folder.
    explicit AppWorld(const QString &folder, const QString &thumbnails = {})
        : m_folder(folder),
          m_preferences(folder + QStringLiteral("/preferences.ini")),
          m_pipeline(library(), folder + QStringLiteral("/exports"), PipelineUse::Editor, thumbnails),
          m_writer(library()),
          m_model({m_pipeline, m_writer, m_preferences, m_clock, library()},
                  EditorModel::Load::StoredSession),
          m_edits(m_model, m_clock),
          m_imports(m_model, m_pipeline),
          m_thumbnails(m_pipeline),
          m_appearance(m_preferences),
          m_pictures(folder + QStringLiteral("/Pictures"))
    {
        m_preferences.set(PreferenceKeys::windowSized, true);
        m_preferences.set(PreferenceKeys::appearance, {QStringLiteral("light")});
    }

    /// The window is made when it is first asked for.
    app::MainWindow &window()
    {
        if (!m_window) {
            m_window = std::make_unique<app::MainWindow>(
                app::WindowServices{context(), m_appearance, chooser(), m_pictures, [] {}});
        }
        return *m_window;
    }
    app::EditorContext context()
    {
        return {m_model, m_edits, m_imports, m_thumbnails, m_pipeline, m_preferences, m_clock, m_state};
    }
    EditorModel &model() { return m_model; }
    app::EditorState &state() { return m_state; }
    Preferences &preferences() { return m_preferences; }
    Answers &answers() { return m_answers; }
    QString library() const
    {
        const QString path = m_folder + QStringLiteral("/library");
        QDir().mkpath(path);
        return path;
    }

    void import(const QStringList &paths)
    {
        ImportRequest request;
        request.paths = paths;
        m_imports.start(request);
        settle();
    }

    /// Waits until nothing is imported or drawn any more, and fails when that takes beyond all reason.
    void settle()
    {
        QElapsedTimer timer;
        timer.start();
        qint64 quietSince = 0;
        while (timer.elapsed() - quietSince < quietMs) {
            if (timer.elapsed() > longestMs) {
                throw std::runtime_error("the window has not come to rest");
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            if (m_imports.running() || !m_thumbnails.idle()) {
                quietSince = timer.elapsed();
            }
        }
    }

private:
    static constexpr int longestMs = 300'000;
    static constexpr int quietMs = 250;

    app::FileChooser chooser()
    {
        app::FileChooser chooser;
        chooser.photos = [this](QWidget *, const app::FileChooser::Files &chosen) {
            chosen(m_answers.photos);
        };
        chooser.picture = [this](QWidget *, const app::FileChooser::Files &chosen) {
            chosen(m_answers.picture);
        };
        chooser.folder = [this](QWidget *, const app::FileChooser::Folder &chosen) {
            chosen(m_answers.folder);
        };
        return chooser;
    }

    QString m_folder;
    Answers m_answers;
    Preferences m_preferences;
    ImagePipeline m_pipeline;
    SessionWriter m_writer;
    SystemClock m_clock;
    EditorModel m_model;
    SettingsEdits m_edits;
    ImportFlow m_imports;
    Thumbnails m_thumbnails;
    app::EditorState m_state;
    app::Appearance m_appearance;
    PicturesFolder m_pictures;
    std::unique_ptr<app::MainWindow> m_window;
};

} // namespace tarnovel::test
