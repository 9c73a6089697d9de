#include "collage/CollagePage.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace tarnovel {

void CollagePage::setLength(double CollageDesign::*length, double value, double largest, const QString &key)
{
    if (std::isfinite(value)) {
        CollageDesign design = m_studio.design();
        design.*length = std::clamp(value, 0.0, largest);
        m_studio.change(design, key);
    }
}

void CollagePage::setGap(double gap)
{
    setLength(&CollageDesign::gap, gap, largestGap, u"gap"_s);
}

void CollagePage::setMargin(double margin)
{
    setLength(&CollageDesign::margin, margin, largestMargin, u"margin"_s);
}

void CollagePage::setRadius(double radius)
{
    setLength(&CollageDesign::radius, radius, largestRadius, u"radius"_s);
}

void CollagePage::setAspect(CollageAspect aspect)
{
    CollageDesign design = m_studio.design();
    design.aspect = aspect;
    m_studio.change(design);
}

void CollagePage::setBackground(const QColor &color)
{
    if (color.isValid()) {
        CollageDesign design = m_studio.design();
        design.background = QColor::fromRgb(color.rgb());
        m_studio.change(design, u"background"_s);
    }
}

void CollagePage::setFilmEdge(const FilmEdge &edge)
{
    // Typing is one step; a choice is one each.
    const FilmEdge &old = m_studio.design().filmEdge;
    const QString key = edge.topText != old.topText           ? u"edge text"_s
                        : edge.startNumber != old.startNumber ? u"start number"_s
                                                              : QString();
    CollageDesign design = m_studio.design();
    design.filmEdge = edge;
    design.filmEdge.startNumber = std::clamp(edge.startNumber, 0, largestStartNumber);
    m_studio.change(design, key);
}

} // namespace tarnovel
