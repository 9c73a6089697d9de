#pragma once

#include <QString>

#include "collage/CollageStudio.h"

namespace tarnovel {

/// What a studio's controls do to the page. Each change is a step, those of one control in quick succession
/// are one; what is no number changes nothing.
class CollagePage {
public:
    // Fractions of the shorter side, to which lengths are held from 0 on.
    static constexpr double largestGap = 0.08;
    static constexpr double largestMargin = 0.10;
    static constexpr double largestRadius = 0.08;
    static constexpr int largestStartNumber = 999'999;

    explicit CollagePage(CollageStudio &studio) : m_studio(studio) {}

    void setGap(double gap);
    void setMargin(double margin);
    void setRadius(double radius);
    void setAspect(CollageAspect aspect);
    void setBackground(const QColor &color);
    void setFilmEdge(const FilmEdge &edge);

private:
    void setLength(double CollageDesign::*length, double value, double largest, const QString &key);

    CollageStudio &m_studio;
};

} // namespace tarnovel
