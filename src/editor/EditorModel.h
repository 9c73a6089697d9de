#pragma once

#include <memory>
#include <optional>
#include <set>

#include <QImage>
#include <QObject>

#include "editor/Clock.h"
#include "editor/EditHistory.h"
#include "editor/PreviewLoader.h"
#include "editor/SessionSaves.h"
#include "editor/SetAsideDocuments.h"
#include "model/Preferences.h"
#include "model/Session.h"
#include "model/SessionWriter.h"
#include "pipeline/ImagePipeline.h"

namespace tarnovel {

/// What the editor model works with; all of it outlives the model.
struct EditorServices {
    ImagePipeline &pipeline;
    SessionWriter &writer;
    Preferences &preferences;
    Clock &clock;
    QString libraryFolder;
};

/// The one live copy of the editing session. Screens read it and change it through its operations; each
/// change is told at once and saved after a pause. It lives on the interface thread.
class EditorModel : public QObject {
    Q_OBJECT

public:
    /// Photos in one session.
    static constexpr qsizetype mostPhotos = 50;

    enum class Load {
        /// The stored session; changes are saved.
        StoredSession,
        /// Nothing; the disk is never touched.
        Empty,
    };

    /// What has changed, for observers; several may come at once.
    enum Change {
        PhotosChanged = 1,
        SelectionChanged = 2,
        SettingsChanged = 4,
        PresetsChanged = 8,
        PreviewsChanged = 16,
        MessageChanged = 32,
        ImportChanged = 64,
        HistoryChanged = 128,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    EditorModel(const EditorServices &services, Load load);
    ~EditorModel() override;

    const QList<PhotoItem> &photos() const { return m_session.photos; }
    const std::optional<QUuid> &selected() const { return m_session.selected; }
    const QList<SavedPreset> &presets() const { return m_session.presets; }
    const std::optional<FrameSettings> &lastStyle() const { return m_session.lastStyle; }
    /// The selected photo, or null.
    const PhotoItem *current() const;
    const PhotoItem *photo(const QUuid &id) const;
    const Previews &previews() const { return m_loader.previews(); }
    const EditHistory &history() const { return m_history; }
    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }
    bool busy() const { return m_busy; }
    const QString &importProgress() const { return m_importProgress; }
    /// Something to tell the user, in the language of its moment; empty when there is nothing.
    const QString &message() const { return m_message; }

    void select(const QUuid &id);
    /// Replaces the selected photo's settings, as a step of the history.
    void step(const FrameSettings &settings);
    /// The same amid a step that has begun. Pictures that the settings now need are loaded.
    void update(const FrameSettings &settings);
    /// The same for any photo, as one step; nothing happens when it has gone.
    void change(const QUuid &id, const FrameSettings &settings);
    /// Puts as many as there is room for at the front, and selects the first of them. Returns how many.
    qsizetype append(const QList<PhotoItem> &items);
    /// Styles new photos and puts them at the front. Without a `style` they get the last one, or stay as they
    /// are where the preference says so.
    qsizetype importPhotos(const QList<PhotoItem> &items, const std::optional<FrameSettings> &style = {});
    /// The style that imported files get: the last one or, where the preference says so, a new photo's.
    FrameSettings styleForImport() const;
    /// Gives every photo the selected one's settings, each keeping its camera texts.
    void applyToAll();

    void applyPreset(const SavedPreset &preset);
    bool savePreset(const QString &name);
    void deletePreset(const QUuid &id);
    void markPresetUsed(const QUuid &id);
    /// The saved style that was used last, or null.
    const SavedPreset *preferredPreset() const;
    /// The style that pickers show as chosen.
    std::optional<QString> activeTemplateID() const;

    /// Puts the photo at the place that `before` has now.
    void movePhoto(const QUuid &id, const QUuid &before);
    void removeCurrent();
    void removePhotos(const std::set<QUuid> &ids);
    /// Saved styles and the last style stay.
    void removeAll();

    EditSnapshot snapshot(const QList<QUuid> &ids) const;
    void record(const EditSnapshot &snapshot);
    /// Begins a step of the selected photo: call it before its settings change.
    void checkpoint();
    void undo();
    void redo();
    /// Takes steps back (or forward) until something in sight has changed: a step whose photos have gone
    /// changes nothing by itself.
    void undoVisibly();
    void redoVisibly();
    /// Changes with every step that is taken, undone or redone: a gesture that sees it change is over.
    int steps() const { return m_steps; }

    /// The files that the session, a step of the history or keepFiles() needs.
    std::set<QString> retainedFiles() const;
    /// Files that work under way still reads, whatever becomes of their photos; none ends that.
    void keepFiles(const std::set<QString> &files) { m_kept = files; }
    void scheduleSave(SaveScheduler::Moment moment = SaveScheduler::Moment::AfterAPause);
    /// Returns when everything is on the disk; false when it could not be saved, also not at a second try.
    bool flush();

    /// Documents of earlier sessions that could not be read and are kept, newest first.
    const QList<SetAsideSession> &setAside() const { return m_setAside.all(); }
    /// What bringing a document back came to; `added` and `presets` are new in the session.
    struct Restored {
        qsizetype photos = 0;
        qsizetype presets = 0;
        /// The session was full.
        bool truncated = false;
        /// Nothing of the document is missing from the session now; the document goes after the next save.
        bool complete = false;
    };
    /// Puts every photo and style of a set-aside document that can be read, and that the session has not,
    /// into the session. Photos go to the front.
    Restored restore(const SetAsideSession &document);
    /// What `restore` would bring: readable, and not in the session yet.
    SalvagedSession restorable(const SetAsideSession &document) const;
    /// Deletes the document; what it alone needed goes with the next save.
    void discard(const SetAsideSession &document);

    /// When a photo or a style was last changed, rather than looked at; none when that is not known.
    std::optional<SecondsSince2001> lastEdit() const;
    void setMessage(const QString &message);
    void setImport(bool busy, const QString &progress);
    bool autoApplyLastStyle() const;
    void setAutoApplyLastStyle(bool on);
    const QString &libraryFolder() const { return m_services.libraryFolder; }

Q_SIGNALS:
    void changed(tarnovel::EditorModel::Changes changes);

private:
    PhotoItem *currentItem();
    std::optional<FrameSettings> autoApplied() const;
    void bringBack(const EditSnapshot &step);
    void edited();
    void loadPreview();
    void removeDocument(const QString &path);
    void selectFirst();
    void saved(bool done);
    void tell(Changes changes) { Q_EMIT changed(changes); }

    const EditorServices m_services;
    Session m_session;
    EditHistory m_history;
    PreviewLoader m_loader;
    SetAsideDocuments m_setAside;
    std::unique_ptr<SessionSaves> m_saves;
    /// A document that was brought back and goes once the session is saved.
    QString m_restoredDocument;
    bool m_editedSinceSave = false;
    QString m_message;
    bool m_busy = false;
    QString m_importProgress;
    int m_steps = 0;
    std::set<QString> m_kept;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(EditorModel::Changes)

} // namespace tarnovel
