#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class CardGrid;
class Label;
class Switch;

/// The styles that the user has saved.
class StylesSection : public Section {
    Q_OBJECT

public:
    StylesSection(const EditingContext &context, Preferences &preferences, Thumbnails &thumbnails);
    bool canReset() const override { return false; }

protected:
    void display(const PhotoItem &photo) override;

private:
    Preferences &m_preferences;
    Thumbnails &m_thumbnails;
    QImage card(int index, QSize roomPx) const;
    /// What a click on a style makes of the photo, which is what its card shows.
    FrameSettings applied(const SavedPreset &preset, const PhotoItem &photo) const;
    void askDelete(int index);

    CardGrid *m_grid;
    QWidget *m_empty;
    QWidget *m_deleteHint;
    Switch *m_keepTexts;
    Switch *m_autoApply;
};

} // namespace tarnovel::app
