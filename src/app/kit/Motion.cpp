#include "app/kit/Motion.h"

#include <cmath>
#include <numbers>
#include <optional>

#include <QApplication>
#include <QStyle>

namespace tarnovel::app::Motion {

namespace {

constexpr double responseMs = 240;

std::optional<bool> &wish()
{
    static std::optional<bool> told;
    return told;
}

double springAt(double progress)
{
    const double angle = 2 * std::numbers::pi * progress * springMs / responseMs;
    return 1 - (1 + angle) * std::exp(-angle);
}

} // namespace

bool reduced()
{
    return wish().value_or(QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0);
}

void setReduced(bool reduced)
{
    wish() = reduced;
}

QEasingCurve spring()
{
    QEasingCurve curve;
    curve.setCustomType(springAt);
    return curve;
}

} // namespace tarnovel::app::Motion
