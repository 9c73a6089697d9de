// What the studio leaves behind when the program ends, and how it goes on with that.

#include <algorithm>
#include <utility>

#include "base/Json.h"
#include "base/Log.h"
#include "collage/CollageDraft.h"
#include "collage/CollageStudio.h"
#include "language/AppLanguage.h"

namespace tarnovel {

QByteArray CollageStudio::draft() const
{
    if (m_choosing || m_closed || !m_history.canUndo()) {
        return {};
    }
    CollageDraft draft{m_design, {}};
    for (const PhotoItem &photo : photosOf(m_design)) {
        if (!m_model.photo(photo.id)) {
            draft.files.insert(photo.id, photo.file);
        }
    }
    return writeCollageDraft(draft);
}

bool CollageStudio::resume(const QByteArray &document)
{
    CollageDraft draft;
    try {
        draft = readCollageDraft(document);
    } catch (const JsonError &error) {
        qCWarning(logCollage) << "a draft cannot be read:" << error.what();
        return false;
    }
    if (draft.files.isEmpty()) {
        adoptDraft(draft.design);
        return true;
    }
    m_photos.open(draft.files.values(), [this, draft](const QList<QUuid> &opened, qsizetype) {
        CollageDesign design = draft.design;
        for (CollageCell &cell : design.cells) {
            const auto same = std::ranges::find_if(opened, [&](const QUuid &id) {
                return draft.files.contains(cell.photo) && photo(id)->file == draft.files.value(cell.photo);
            });
            cell.photo = same == opened.end() ? cell.photo : *same;
        }
        if (m_choosing && m_picked.isEmpty()) {
            adoptDraft(design);
        }
    });
    return true;
}

void CollageStudio::adoptDraft(CollageDesign design)
{
    QList<PhotoItem> photos;
    m_picked.clear();
    for (const CollageCell &cell : std::as_const(design.cells)) {
        if (const PhotoItem *known = photo(cell.photo)) {
            photos.append(*known);
            m_picked.append(known->id);
        }
    }
    tell(PhotosChanged);
    if (photos.size() < design.cells.size()) {
        setMessage(localized({"部分照片已经不在了。", "Some of its photos are gone.",
                              "Certaines de ses photos ont disparu."}));
    }
    if (photos.size() < CollageEdits::fewestPhotos) {
        return;
    }
    if (photos.size() < design.cells.size()) {
        design = CollageEdits::rebuilt(design, photos, LayoutChoice::Keep);
    }
    // What has been arranged may be undone, and is worth a question before it goes.
    m_history.record(CollageEdits::rebuilt({}, photos, LayoutChoice::Best));
    m_choosing = false;
    m_photos.postponeTiles();
    adopt(design);
    tell(PhaseChanged | DesignChanged | HistoryChanged);
}

} // namespace tarnovel
