#pragma once

#include "app/kit/ItemView.h"
#include "model/FrameSettings.h"

namespace tarnovel::app {

/// The texts of a frame, one a row, with an eye each.
class LayerList : public ItemView {
    Q_OBJECT

public:
    LayerList();

    void setLayers(const QList<TextLayer> &layers);
    const QList<TextLayer> &layers() const { return m_layers; }

    int count() const override { return static_cast<int>(m_layers.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    void visibilityAsked(int index);
    /// The pointer has chosen the row; arrows do not say so.
    void rowClicked(int index);

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QRect eyeRect(int index) const;
    int titleWidth() const;
    QList<TextLayer> m_layers;
};

} // namespace tarnovel::app
