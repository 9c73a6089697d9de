#pragma once

#include <functional>

#include <QString>

#include "collage/CollageStudio.h"

namespace tarnovel {

/// What a studio's controls do to the selected cell. Each change is a step; without a selection the studio's
/// message asks for one.
class SelectedCell {
public:
    explicit SelectedCell(CollageStudio &studio) : m_studio(studio) {}

    void setFrame(CellFrame frame);
    void copyFrame(CopyScope scope);
    /// 1…4; changes in quick succession are one step.
    void setZoom(double zoom);
    void centerPhoto();
    /// Pan and zoom.
    void resetPhoto();

private:
    bool isMissing();
    void change(const std::function<void(CollageCell &)> &edit, const QString &key = {});

    CollageStudio &m_studio;
};

} // namespace tarnovel
