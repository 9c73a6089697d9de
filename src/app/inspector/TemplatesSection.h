#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class CardGrid;

/// The built-in looks, each drawn with the selected photo.
class TemplatesSection : public Section {
    Q_OBJECT

public:
    TemplatesSection(const EditingContext &context, Thumbnails &thumbnails);
    bool canReset() const override { return false; }

protected:
    void display(const PhotoItem &photo) override;

private:
    Thumbnails &m_thumbnails;
    QImage card(int index, QSize roomPx) const;
    /// The photo in the settings of a card.
    PhotoItem dressed(PhotoItem photo, int index) const;
    QImage thumbnail(const PhotoItem &dressed, int index, QSize roomPx) const;
    CardGrid *m_grid;
    QUuid m_photo;
    std::optional<QString> m_active;
};

} // namespace tarnovel::app
