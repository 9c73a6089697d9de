#pragma once

#include <QBasicTimer>
#include <QHash>
#include <QPixmap>

#include "app/kit/ItemView.h"
#include "collage/CollageStudio.h"

namespace tarnovel::app {

/// The layouts for so many photos, each with the collage's own photos in it.
class LayoutStrip : public ItemView {
    Q_OBJECT

public:
    explicit LayoutStrip(CollageStudio &studio);

    int count() const override { return static_cast<int>(m_presets.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override { return m_presets.at(index).title; }
    bool itemEnabled(int) const override { return m_studio.editable(); }
    bool itemChosen(int index) const override;
    QSize sizeHint() const override { return {400, 128}; }

protected:
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool event(QEvent *event) override;

private:
    void learn();
    void studioChanged(CollageStudio::Changes changes);
    void layOut();
    void scrollTo(int offset);
    void reveal(int index);
    /// Of a thumbnail, in points.
    QSizeF sizeOf(const CollagePreset &preset) const;
    QPixmap picture(const CollagePreset &preset);

    CollageStudio &m_studio;
    QList<CollagePreset> m_presets;
    /// Left edges before scrolling; one more than there are layouts.
    QList<int> m_edges;
    int m_gap = 0;
    int m_offset = 0;
    QHash<QString, QPixmap> m_pictures;
    double m_ratio = 0;
    /// Thumbnails follow once the board rests, so that dragging there stays free of them.
    QBasicTimer m_rest;
};

} // namespace tarnovel::app
