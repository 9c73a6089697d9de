#pragma once

#include "app/inspector/Section.h"
#include "app/kit/CardGrid.h"

namespace tarnovel::app {

class NumberField;

/// The ratios of the canvas, each drawn as its own outline.
class RatioTiles : public CardGrid {
    Q_OBJECT

public:
    RatioTiles(Source source, std::function<double(int)> ratio);

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    std::function<double(int)> m_ratio;
};

/// The shape of the canvas.
class CanvasSection : public Section {
    Q_OBJECT

public:
    explicit CanvasSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    double ratioOf(int index) const;
    /// The preset, with the ratio that holds where the preset does not name it.
    QString nameOf(int index) const;

    RatioTiles *m_tiles;
    NumberField *m_width;
    NumberField *m_height;
};

} // namespace tarnovel::app
