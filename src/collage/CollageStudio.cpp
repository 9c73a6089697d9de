#include "collage/CollageStudio.h"

#include <algorithm>
#include <utility>

#include <QPainter>

#include "editor/ImportFlow.h"
#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

void CollageView::draw(QPainter &painter) const
{
    CollageRenderer::draw(painter, design, plan, photoSizes, images);
}

CollageStudio::CollageStudio(EditorModel &model, ImagePipeline &pipeline, Clock &clock)
    : m_model(model),
      m_photos(model, pipeline),
      m_images(pipeline, clock),
      m_sliders([this] { checkpoint(); }, clock),
      m_save(pipeline)
{
    connect(&m_save, &CollageSave::saved, this, &CollageStudio::saved);
    connect(&m_save, &CollageSave::failed, this, &CollageStudio::saveFailed);
    connect(&m_photos, &CollagePhotos::changed, this, [this] { tell(PhotosChanged); });
    connect(&m_photos, &CollagePhotos::tileChanged, this, [this] { tell(ImagesChanged); });
    connect(&m_images, &CollageBoardImages::changed, this, [this] { tell(ImagesChanged); });
    connect(&m_images, &CollageBoardImages::failed, this, [this](const QUuid &id) {
        const PhotoItem *item = photo(id);
        setMessage(
            (item ? item->name : QString()) + localized({"：", ": ", "\u202f: "}) +
            localized({"无法读取照片。", "Could not read this photo.", "Impossible de lire cette photo."}));
    });
}

bool CollageStudio::pick(const QList<QUuid> &photos)
{
    bool picked = false;
    for (const QUuid &id : photos) {
        if (m_picked.contains(id) || !photo(id)) {
            continue;
        }
        if (total() >= CollageEdits::mostPhotos) {
            tell(LimitReached);
            break;
        }
        m_picked.append(id);
        picked = true;
    }
    return picked;
}

void CollageStudio::toggle(const QUuid &photo)
{
    if (m_saving || m_closed) {
        return;
    }
    if (!m_picked.contains(photo)) {
        if (!pick({photo})) {
            return;
        }
    } else if (m_choosing || total() > CollageEdits::fewestPhotos) {
        m_picked.removeOne(photo);
    } else {
        setMessage(localized({"拼图至少需要两张照片。", "A collage needs at least two photos.",
                              "Un collage compte au moins deux photos."}),
                   MessageKind::Hint);
        return;
    }
    // Whoever hears of the photos reads the layouts that go with them.
    if (!m_choosing) {
        rebuild(LayoutChoice::Keep);
    }
    tell(PhotosChanged);
}

void CollageStudio::clearPicked()
{
    if (m_choosing && !m_picked.isEmpty()) {
        m_picked.clear();
        tell(PhotosChanged);
    }
}

void CollageStudio::filesUnreadable(qsizetype count)
{
    ImportSummary summary;
    summary.unreadable = count;
    setMessage(summary.message());
}

void CollageStudio::addFiles(const QStringList &paths)
{
    m_photos.open(paths, [this](const QList<QUuid> &photos, qsizetype unreadable) {
        if (!m_saving && pick(photos)) {
            if (!m_choosing) {
                rebuild(LayoutChoice::Keep);
            }
            tell(PhotosChanged);
        }
        if (unreadable > 0) {
            filesUnreadable(unreadable);
        }
    });
}

QList<PhotoItem> CollageStudio::photosOf(const CollageDesign &design) const
{
    QList<PhotoItem> photos;
    for (const CollageCell &cell : design.cells) {
        photos.append(*photo(cell.photo));
    }
    return photos;
}

void CollageStudio::rebuild(LayoutChoice choice)
{
    if (total() < CollageEdits::fewestPhotos) {
        return;
    }
    QList<PhotoItem> photos;
    for (const QUuid &id : m_picked) {
        photos.append(*photo(id));
    }
    change(CollageEdits::rebuilt(m_design, photos, choice));
}

void CollageStudio::start()
{
    if (!canStart()) {
        return;
    }
    m_choosing = false;
    m_photos.postponeTiles();
    QList<QUuid> shown;
    for (const CollageCell &cell : m_design.cells) {
        shown.append(cell.photo);
    }
    if (shown.isEmpty()) {
        rebuild(LayoutChoice::Best);
        // There is nothing before the first collage to go back to.
        m_history.clear();
        tell(HistoryChanged);
    } else if (shown != m_picked) {
        rebuild(LayoutChoice::Keep);
    }
    tell(PhaseChanged);
}

void CollageStudio::choosePhotos()
{
    if (editable()) {
        m_choosing = true;
        tell(PhaseChanged);
    }
}

QList<CollagePreset> CollageStudio::presets() const
{
    return m_design.cells.isEmpty() ? QList<CollagePreset>()
                                    : CollagePreset::all(static_cast<int>(m_design.cells.size()));
}

void CollageStudio::setStage(QSizeF room, double devicePixelRatio)
{
    if (const BoardStage stage{room, devicePixelRatio}; stage != m_stage) {
        m_stage = stage;
        tell(DesignChanged);
    }
}

CollageView CollageStudio::view(const CollageDesign &design, const CollagePlan &plan) const
{
    CollageView view{design, plan};
    for (int slot = 0; slot < design.cells.size(); ++slot) {
        view.photoSizes[slot] = photo(design.cells.at(slot).photo)->size();
    }
    return view;
}

CollageView CollageStudio::board()
{
    CollageView shown = view(m_design, m_stage.plan(m_design));
    shown.images = m_images.images(shown.design, shown.plan);
    return shown;
}

bool CollageStudio::settled() const
{
    return m_images.exact(m_design, m_stage.plan(m_design));
}

CollageView CollageStudio::thumbnail(const CollagePreset &preset, int longEdge) const
{
    CollageDesign design = m_design;
    if (preset.id != design.preset.id) {
        design.preset = preset;
        design.node = preset.node;
    }
    CollageView shown = view(design, CollagePlan::of(design, longEdge));
    shown.images = m_images.smallImages(shown.design, shown.plan);
    return shown;
}

bool CollageStudio::unreadable(int slot) const
{
    return hasSlot(slot) && m_images.unreadable(m_design.cells.at(slot).photo);
}

void CollageStudio::checkpoint()
{
    if (!editable()) {
        return;
    }
    ++m_steps;
    m_sliders.end();
    m_history.record(m_design);
    tell(HistoryChanged);
}

std::optional<int> CollageStudio::selectionIn(const CollageDesign &design) const
{
    if (!m_selected || !hasSlot(*m_selected)) {
        return std::nullopt;
    }
    const QUuid photo = m_design.cells.at(*m_selected).photo;
    for (qsizetype i = 0; i < design.cells.size(); ++i) {
        if (design.cells.at(i).photo == photo) {
            return static_cast<int>(i);
        }
    }
    // Another photo in the same cell keeps it selected; a photo that has left takes its selection along.
    return design.cells.size() == m_design.cells.size() ? m_selected : std::nullopt;
}

void CollageStudio::adopt(const CollageDesign &design)
{
    const std::optional<int> selected = selectionIn(design);
    m_design = design;
    QList<QUuid> photos;
    for (const CollageCell &cell : design.cells) {
        photos.append(cell.photo);
    }
    Changes changes = DesignChanged;
    if (photos != m_picked) {
        m_picked = photos;
        changes |= PhotosChanged;
    }
    if (m_selected != selected) {
        m_selected = selected;
        changes |= SelectionChanged;
    }
    m_images.show(photosOf(design), m_photos.tiles());
    tell(changes);
}

void CollageStudio::update(const CollageDesign &design)
{
    if (editable() && design != m_design) {
        adopt(design);
    }
}

void CollageStudio::change(const CollageDesign &design, const QString &key)
{
    if (!editable() || design == m_design) {
        return;
    }
    if (key.isEmpty()) {
        checkpoint();
    } else {
        m_sliders.change(key);
    }
    update(design);
}

void CollageStudio::bringBack(const CollageDesign &design)
{
    ++m_steps;
    m_sliders.end();
    adopt(design);
    tell(HistoryChanged);
}

void CollageStudio::undo()
{
    if (canUndo()) {
        bringBack(*m_history.undo([this](const CollageDesign &) { return m_design; }));
    }
}

void CollageStudio::redo()
{
    if (canRedo()) {
        bringBack(*m_history.redo([this](const CollageDesign &) { return m_design; }));
    }
}

void CollageStudio::finish()
{
    if (!canFinish()) {
        return;
    }
    if (m_model.photos().size() >= EditorModel::mostPhotos) {
        saveFailed(localized({"本次编辑已有 50 张照片。", "The session already has 50 photos.",
                              "La session compte déjà 50 photos."}));
        return;
    }
    m_saving = true;
    m_message.clear();
    tell(PhaseChanged | MessageChanged | HistoryChanged);
    m_save.start(m_design, photosOf(m_design), m_model.libraryFolder());
}

void CollageStudio::saved(const CollageOutput::Saved &collage)
{
    if (m_closed) {
        return;
    }
    PhotoItem photo = collage.photo;
    photo.name = localized({"拼图", "Collage", "Collage"});
    m_saving = false;
    if (m_model.importPhotos({photo}) == 0) {
        saveFailed(localized({"本次编辑已有 50 张照片。", "The session already has 50 photos.",
                              "La session compte déjà 50 photos."}));
        return;
    }
    collage.file->keep();
    m_closed = true;
    tell(PhaseChanged | HistoryChanged);
}

void CollageStudio::saveFailed(const QString &reason)
{
    if (m_closed) {
        return;
    }
    m_saving = false;
    const QString what =
        localized({"无法保存拼图。", "Could not save the collage.", "Impossible d’enregistrer le collage."});
    tell(PhaseChanged | HistoryChanged);
    setMessage((what + u' ' + reason).trimmed());
}

void CollageStudio::cancel()
{
    if (m_closed) {
        return;
    }
    m_save.cancel();
    m_saving = false;
    m_closed = true;
    tell(PhaseChanged | HistoryChanged);
}

void CollageStudio::setMessage(const QString &message, MessageKind kind)
{
    m_message = message;
    m_messageKind = kind;
    tell(MessageChanged);
}

} // namespace tarnovel
