#pragma once

#include <QBasicTimer>
#include <QHash>
#include <QPixmap>

#include "app/kit/ItemStrip.h"
#include "collage/CollageStudio.h"

namespace tarnovel::app {

/// The layouts for so many photos, each with the collage's own photos in it.
class LayoutStrip : public ItemStrip {
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
    void timerEvent(QTimerEvent *event) override;
    bool event(QEvent *event) override;

private:
    void learn();
    void studioChanged(CollageStudio::Changes changes);
    void layOut();
    /// Of a thumbnail, in points.
    QSizeF sizeOf(const CollagePreset &preset) const;
    QPixmap picture(const CollagePreset &preset);

    CollageStudio &m_studio;
    QList<CollagePreset> m_presets;
    QHash<QString, QPixmap> m_pictures;
    double m_ratio = 0;
    /// Thumbnails follow once the board rests, so that dragging there stays free of them.
    QBasicTimer m_rest;
};

} // namespace tarnovel::app
