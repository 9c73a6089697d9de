#pragma once

#include <memory>
#include <optional>

#include <QObject>
#include <QStringList>

#include "collage/BoardStage.h"
#include "collage/CollageBoardImages.h"
#include "collage/CollageEdits.h"
#include "collage/CollagePhotos.h"
#include "collage/CollageSave.h"
#include "editor/EditorRules.h"
#include "editor/UndoSteps.h"

namespace tarnovel {

/// A collage with everything that drawing it takes at the moment.
struct CollageView {
    CollageDesign design;
    CollagePlan plan;
    std::map<int, QSizeF> photoSizes = {};
    std::map<int, PhotoImage> images = {};

    /// Draws at the origin; the painter's unit has to be the device's pixel, and the origin on one.
    void draw(QPainter &painter) const;
};

/// The collage studio without its screens: first the chooser, where photos are tapped in order, then the
/// board, where the collage is arranged, then the save that makes it a photo of the session. Positions and
/// lengths are in points, from the board's upper left corner. It lives on the interface thread.
class CollageStudio : public QObject {
    Q_OBJECT

public:
    /// What has changed, for observers; several may come at once.
    enum Change {
        /// Chooser or board, saving, closed.
        PhaseChanged = 1,
        /// The photos on offer, those picked, the files being opened.
        PhotosChanged = 2,
        /// The limit of nine photos has been met.
        LimitReached = 4,
        DesignChanged = 8,
        SelectionChanged = 16,
        /// Pictures of the board or of the chooser's tiles have arrived.
        ImagesChanged = 32,
        HistoryChanged = 64,
        MessageChanged = 128,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    CollageStudio(EditorModel &model, ImagePipeline &pipeline, Clock &clock);

    // The chooser.

    bool choosing() const { return m_choosing; }
    QList<PhotoItem> candidates() const { return m_photos.all(); }
    const QList<QUuid> &picked() const { return m_picked; }
    qsizetype total() const { return m_picked.size(); }
    /// The photo's place among the picked ones, from 1 on; 0 for one that is not picked.
    qsizetype order(const QUuid &photo) const { return m_picked.indexOf(photo) + 1; }
    QImage tile(const QUuid &photo) { return m_photos.tile(photo); }
    bool tileFailed(const QUuid &photo) const { return m_photos.tileFailed(photo); }
    bool importing() const { return m_photos.opening(); }
    /// Picks a photo as the last, or lets it go. On the board, this changes the collage; its last two photos
    /// stay.
    void toggle(const QUuid &photo);
    void clearPicked();
    /// Opens files of the disk, which join the candidates, and picks as many as there is room for.
    void addFiles(const QStringList &paths);
    bool canStart() const { return m_choosing && total() >= CollageEdits::fewestPhotos; }
    /// From the chooser to the board.
    void start();
    /// From the board back to the chooser.
    void choosePhotos();

    // The board.

    const CollageDesign &design() const { return m_design; }
    const PhotoItem *photo(const QUuid &id) const { return m_photos.find(id); }
    /// In the current language.
    QList<CollagePreset> presets() const;
    /// Room for the board, in points.
    void setStage(QSizeF room, double devicePixelRatio);
    double devicePixelRatio() const { return m_stage.devicePixelRatio; }
    QSizeF boardSize() const { return m_stage.boardSize(m_design); }
    /// Cells and dividers, in points.
    CollageLayout layout() const { return m_stage.layout(m_design); }
    std::optional<int> cellAt(QPointF point) const { return m_stage.cellAt(m_design, point); }
    /// What the board shows now; asks for better pictures where there are any to come.
    CollageView board();
    /// The board shows exactly what the result will.
    bool settled() const;
    /// The collage in another layout, at a small size in device pixels.
    CollageView thumbnail(const CollagePreset &preset, int longEdge) const;
    QSize outputSize() const { return CollagePlan::of(m_design, CollageOutput::longEdge).size; }
    bool unreadable(int slot) const;

    const std::optional<int> &selected() const { return m_selected; }
    const CollageCell *selectedCell() const;
    void select(std::optional<int> slot);

    void choosePreset(const QString &id);
    /// The selection goes with its photo.
    void swapCells(int slot, int other);
    /// Another photo in the cell's place; one that the collage has already changes places with it.
    void replacePhoto(int slot, const QUuid &photo);
    void replacePhoto(int slot, const QString &path);

    // Steps back and forward, of the board alone.
    static constexpr qsizetype mostSteps = 40;
    bool canUndo() const { return editable() && m_history.canUndo(); }
    bool canRedo() const { return editable() && m_history.canRedo(); }
    void undo();
    /// Changes with every step that is taken, undone or redone.
    int steps() const { return m_steps; }
    void redo();
    /// Begins a step, for a change that consists of several updates.
    void checkpoint();
    /// Replaces the design within the step that has begun.
    void update(const CollageDesign &design);
    /// One step; steps of one control (`key`) in quick succession are joined.
    void change(const CollageDesign &design, const QString &key = {});

    /// The board is shown and nothing is being saved.
    bool editable() const { return !m_choosing && !m_saving && !m_closed; }
    bool canFinish() const { return editable() && m_design.cells.size() >= CollageEdits::fewestPhotos; }
    /// Renders and saves the collage off the interface thread; then it is the session's first photo, and the
    /// studio is closed. After a failure the studio is as before, with a message.
    void finish();
    bool saving() const { return m_saving; }
    /// Closes without a collage, also while one is being saved.
    void cancel();
    bool closed() const { return m_closed; }

    /// The board as a document from which `resume` goes on; empty where there is nothing to lose.
    QByteArray draft() const;
    /// Goes on with a draft once its files have been opened; without enough of its photos it stays at the
    /// chooser, with a message. False for a document that is none.
    bool resume(const QByteArray &document);

    /// Something to tell the user, in the language of its moment; empty when there is nothing.
    const QString &message() const { return m_message; }
    enum class MessageKind {
        /// Something that went wrong.
        Error,
        /// What to do first.
        Hint,
    };
    MessageKind messageKind() const { return m_messageKind; }
    void setMessage(const QString &message, MessageKind kind = MessageKind::Error);

Q_SIGNALS:
    void changed(tarnovel::CollageStudio::Changes changes);

private:
    bool pick(const QList<QUuid> &photos);
    void rebuild(LayoutChoice choice);
    QList<PhotoItem> photosOf(const CollageDesign &design) const;
    CollageView view(const CollageDesign &design, const CollagePlan &plan) const;
    /// The cell of the selected photo in another design.
    std::optional<int> selectionIn(const CollageDesign &design) const;
    void adopt(const CollageDesign &design);
    bool hasSlot(int slot) const { return slot >= 0 && slot < m_design.cells.size(); }
    void bringBack(const CollageDesign &design);
    void saved(const CollageOutput::Saved &collage);
    void saveFailed(const QString &reason);
    void adoptDraft(CollageDesign design);
    void filesUnreadable(qsizetype count);
    void tell(Changes changes) { Q_EMIT changed(changes); }

    EditorModel &m_model;
    CollagePhotos m_photos;
    CollageBoardImages m_images;
    SliderCheckpoints m_sliders;
    QList<QUuid> m_picked;
    CollageDesign m_design;
    UndoSteps<CollageDesign> m_history{mostSteps};
    std::optional<int> m_selected;
    int m_steps = 0;
    BoardStage m_stage;
    bool m_choosing = true;
    bool m_saving = false;
    bool m_closed = false;
    QString m_message;
    MessageKind m_messageKind = MessageKind::Error;
    CollageSave m_save;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CollageStudio::Changes)

} // namespace tarnovel
