#pragma once

#include <QHash>
#include <QPixmap>
#include <QWidget>

#include "app/kit/ItemView.h"
#include "collage/CollageStudio.h"

namespace tarnovel::app {

class Button;
class Label;
class Slider;

/// The papers that a cell can have, round the selected cell's photo.
class FrameTiles : public ItemView {
    Q_OBJECT

public:
    explicit FrameTiles(CollageStudio &studio);

    /// Shows the selected cell's photo and frame, if they are others than before.
    void follow();

    int count() const override { return static_cast<int>(cellFrames.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemChosen(int index) const override;
    QSize sizeHint() const override { return {264, 84}; }

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    QPixmap picture(CellFrame frame);

    CollageStudio &m_studio;
    std::optional<std::pair<QUuid, CellFrame>> m_shown;
    /// What the pictures show.
    QUuid m_photo;
    double m_ratio = 0;
    QHash<int, QPixmap> m_pictures;
};

/// Frame, zoom and place of the selected cell's photo.
class CellsPage : public QWidget {
    Q_OBJECT

public:
    explicit CellsPage(CollageStudio &studio);

private:
    void addFrames();
    void addPhoto();
    void showState();

    CollageStudio &m_studio;
    Label *m_cell;
    FrameTiles *m_frames;
    QWidget *m_copies;
    Slider *m_zoom;
    Button *m_center;
    Button *m_reset;
};

} // namespace tarnovel::app
