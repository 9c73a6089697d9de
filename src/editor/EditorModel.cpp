#include "editor/EditorModel.h"

#include <algorithm>
#include <utility>

#include "language/AppLanguage.h"
#include "model/SessionStore.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

EditorModel::EditorModel(const EditorServices &services, Load load)
    : m_services(services), m_loader(services.pipeline), m_setAside(services.libraryFolder)
{
    connect(&m_loader, &PreviewLoader::changed, this, [this] { tell(PreviewsChanged); });
    connect(&m_loader, &PreviewLoader::unreadable, this, [this] {
        setMessage(
            localized({"无法读取照片。", "Could not read this photo.", "Impossible de lire cette photo."}));
    });
    if (load == Load::StoredSession) {
        LoadedSession loaded = loadSession(services.libraryFolder, LibraryAccess::Own);
        m_session = std::move(loaded.session);
        m_setAside.readFolder();
        if (loaded.decoded) {
            loaded.cleanupCandidates.merge(m_setAside.removeKnown(m_session));
        }
        m_saves = std::make_unique<SessionSaves>(
            services.writer, services.clock, services.libraryFolder, std::move(loaded.cleanupCandidates),
            SessionSaves::Owner{.retained =
                                    [this] {
                                        std::set<QString> files = retainedFiles();
                                        files.insert(m_setAside.neededFiles().begin(),
                                                     m_setAside.neededFiles().end());
                                        return files;
                                    },
                                .finished = [this](bool done) { saved(done); }});
        loadPreview();
    }
}

EditorModel::~EditorModel() = default;

const PhotoItem *EditorModel::photo(const QUuid &id) const
{
    const auto found = std::ranges::find(m_session.photos, id, &PhotoItem::id);
    return found == m_session.photos.end() ? nullptr : &*found;
}

const PhotoItem *EditorModel::current() const
{
    return m_session.selected ? photo(*m_session.selected) : nullptr;
}

PhotoItem *EditorModel::currentItem()
{
    // A search of its own: writing through the constant one would reach the copies that a save or an export
    // holds.
    const auto found = std::ranges::find_if(
        m_session.photos, [this](const PhotoItem &item) { return item.id == m_session.selected; });
    return found == m_session.photos.end() ? nullptr : &*found;
}

void EditorModel::select(const QUuid &id)
{
    m_session.selected = id;
    if (const PhotoItem *item = current()) {
        m_session.lastStyle = item->settings;
    }
    m_loader.clear();
    loadPreview();
    tell(SelectionChanged | SettingsChanged);
    scheduleSave();
}

void EditorModel::change(const QUuid &id, const FrameSettings &settings)
{
    if (!photo(id)) {
        return;
    }
    record(snapshot({id}));
    // Looked up anew: whoever heard of the step may have changed the list, or hold a copy of it.
    const auto place =
        std::ranges::find_if(m_session.photos, [&id](const PhotoItem &item) { return item.id == id; });
    if (place == m_session.photos.end()) {
        return;
    }
    place->settings = settings;
    edited();
    if (m_session.selected == id) {
        m_session.lastStyle = settings;
        loadPreview();
    }
    tell(SettingsChanged);
    scheduleSave();
}

void EditorModel::update(const FrameSettings &settings)
{
    PhotoItem *item = currentItem();
    if (!item) {
        return;
    }
    const bool otherPictures =
        PreviewLoader::picturesOf(item->settings) != PreviewLoader::picturesOf(settings);
    item->settings = settings;
    m_session.lastStyle = settings;
    edited();
    if (otherPictures) {
        loadPreview();
    }
    tell(SettingsChanged);
    scheduleSave();
}

void EditorModel::step(const FrameSettings &settings)
{
    checkpoint();
    update(settings);
}

qsizetype EditorModel::append(const QList<PhotoItem> &items)
{
    const QList<PhotoItem> taken =
        items.first(std::clamp<qsizetype>(mostPhotos - photos().size(), 0, items.size()));
    if (taken.isEmpty()) {
        scheduleSave();
        return 0;
    }
    m_session.photos = taken + m_session.photos;
    edited();
    tell(PhotosChanged);
    select(taken.first().id);
    return taken.size();
}

void EditorModel::movePhoto(const QUuid &id, const QUuid &before)
{
    const auto indexOf = [this](const QUuid &wanted) {
        return std::ranges::find(m_session.photos, wanted, &PhotoItem::id) - m_session.photos.begin();
    };
    const qsizetype from = indexOf(id);
    const qsizetype to = indexOf(before);
    if (from == to || from == photos().size() || to == photos().size()) {
        return;
    }
    m_session.photos.move(from, to);
    edited();
    tell(PhotosChanged);
    scheduleSave();
}

void EditorModel::selectFirst()
{
    m_session.selected = photos().isEmpty() ? std::nullopt : std::optional(photos().first().id);
    m_loader.clear();
    tell(SelectionChanged | SettingsChanged);
}

void EditorModel::removeCurrent()
{
    if (m_session.selected) {
        removePhotos({*m_session.selected});
    }
}

void EditorModel::removePhotos(const std::set<QUuid> &ids)
{
    m_session.photos.removeIf([&ids](const PhotoItem &item) { return ids.contains(item.id); });
    edited();
    tell(PhotosChanged);
    if (m_session.selected && ids.contains(*m_session.selected)) {
        selectFirst();
    }
    loadPreview();
    scheduleSave();
}

void EditorModel::removeAll()
{
    m_session.photos.clear();
    m_session.selected.reset();
    m_history.clear();
    m_loader.forget();
    edited();
    tell(PhotosChanged | SelectionChanged | SettingsChanged | HistoryChanged);
    scheduleSave();
}

EditSnapshot EditorModel::snapshot(const QList<QUuid> &ids) const
{
    EditSnapshot step;
    for (const QUuid &id : ids) {
        if (const PhotoItem *item = photo(id)) {
            step.settings.insert(id, item->settings);
        }
    }
    step.selected = m_session.selected;
    return step;
}

void EditorModel::record(const EditSnapshot &snapshot)
{
    ++m_steps;
    m_history.record(snapshot);
    tell(HistoryChanged);
}

void EditorModel::checkpoint()
{
    if (const PhotoItem *item = current()) {
        record(snapshot({item->id}));
    }
}

void EditorModel::undo()
{
    if (const auto step = m_history.undo([this](const EditSnapshot &of) { return snapshot(of.ids()); })) {
        ++m_steps;
        bringBack(*step);
    }
}

void EditorModel::redo()
{
    if (const auto step = m_history.redo([this](const EditSnapshot &of) { return snapshot(of.ids()); })) {
        ++m_steps;
        bringBack(*step);
    }
}

void EditorModel::undoVisibly()
{
    // Not the selection: a step back to a photo that is shown already changes nothing in sight.
    const auto shown = [this] { return std::pair(m_session.photos, m_session.selected); };
    for (const auto before = shown(); canUndo() && shown() == before;) {
        undo();
    }
}

void EditorModel::redoVisibly()
{
    const auto shown = [this] { return std::pair(m_session.photos, m_session.selected); };
    for (const auto before = shown(); canRedo() && shown() == before;) {
        redo();
    }
}

void EditorModel::bringBack(const EditSnapshot &step)
{
    edited();
    for (PhotoItem &item : m_session.photos) {
        if (const auto settings = step.settings.constFind(item.id); settings != step.settings.constEnd()) {
            item.settings = *settings;
        }
    }
    if (step.selected && photo(*step.selected)) {
        m_session.selected = step.selected;
    }
    if (const PhotoItem *item = current()) {
        m_session.lastStyle = item->settings;
    }
    m_loader.clear();
    loadPreview();
    tell(SettingsChanged | SelectionChanged | HistoryChanged);
    scheduleSave();
}

std::set<QString> EditorModel::retainedFiles() const
{
    std::set<QString> files = m_session.referencedFiles();
    files.merge(m_history.referencedFiles());
    files.insert(m_kept.begin(), m_kept.end());
    return files;
}

void EditorModel::scheduleSave(SaveScheduler::Moment moment)
{
    if (m_saves) {
        m_saves->schedule(m_session, retainedFiles(), moment);
    }
}

bool EditorModel::flush()
{
    return !m_saves || m_saves->flush();
}

void EditorModel::saved(bool done)
{
    if (!done) {
        setMessage(localized({"无法保存本次编辑，请检查设备剩余空间。",
                              "Could not save your edits. Check available device storage.",
                              "Impossible d’enregistrer vos modifications. Vérifiez l’espace de stockage."}));
        return;
    }
    if (std::exchange(m_editedSinceSave, false)) {
        m_services.preferences.set(PreferenceKeys::lastEdit, m_services.clock.date());
    }
    if (!m_restoredDocument.isEmpty()) {
        removeDocument(std::exchange(m_restoredDocument, {}));
    }
}

void EditorModel::edited()
{
    m_editedSinceSave = true;
}

std::optional<SecondsSince2001> EditorModel::lastEdit() const
{
    const double stored = m_services.preferences.get(PreferenceKeys::lastEdit);
    return stored > 0 ? std::optional(stored) : std::nullopt;
}

SalvagedSession EditorModel::restorable(const SetAsideSession &document) const
{
    return m_setAside.missingFrom(m_session, document);
}

EditorModel::Restored EditorModel::restore(const SetAsideSession &document)
{
    const SalvagedSession found = restorable(document);
    Restored result;
    result.presets = found.session.presets.size();
    m_session.presets += found.session.presets;
    if (!m_session.lastStyle) {
        m_session.lastStyle = found.session.lastStyle;
    }
    result.photos = append(found.session.photos);
    result.truncated = result.photos < found.session.photos.size();
    if (found.session.selected && photo(*found.session.selected)) {
        select(*found.session.selected);
    }
    result.complete = found.whole() && !result.truncated;
    if (result.complete) {
        m_restoredDocument = document.path;
    }
    tell(PresetsChanged);
    scheduleSave(SaveScheduler::Moment::AtOnce);
    return result;
}

void EditorModel::discard(const SetAsideSession &document)
{
    removeDocument(document.path);
    scheduleSave(SaveScheduler::Moment::AtOnce);
}

void EditorModel::removeDocument(const QString &path)
{
    if (const std::optional<std::set<QString>> files = m_setAside.remove(path)) {
        if (m_saves) {
            m_saves->addCandidates(*files);
        }
        tell(PhotosChanged);
    }
}

void EditorModel::loadPreview()
{
    if (const PhotoItem *item = current()) {
        m_loader.load(*item);
    } else {
        m_loader.clear();
    }
}

void EditorModel::setMessage(const QString &message)
{
    m_message = message;
    tell(MessageChanged);
}

void EditorModel::setImport(bool busy, const QString &progress)
{
    m_busy = busy;
    m_importProgress = progress;
    tell(ImportChanged);
}

} // namespace tarnovel
