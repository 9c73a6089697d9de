#pragma once

#include <array>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// The sections of the inspector, in the order of the rail.
enum class Tool {
    Templates,
    Styles,
    Canvas,
    Background,
    Placement,
    Border,
    Film,
    Text,
    Logo,
    Signature,
    Camera
};

struct ToolRow {
    Tool tool;
    /// Under which a tool is remembered.
    const char *id;
    Text title;
    const char *icon;
    /// A line parts it from the tool before it.
    bool beginsGroup = false;
};

inline constexpr std::array<ToolRow, 11> toolRows = {{
    {Tool::Templates, "templates", {"模板", "Templates", "Modèles"}, "templates"},
    {Tool::Styles, "styles", {"我的风格", "My styles", "Mes styles"}, "styles"},
    {Tool::Canvas, "canvas", {"画布", "Canvas", "Format"}, "canvas", true},
    {Tool::Background, "background", {"背景", "Background", "Fond"}, "background"},
    {Tool::Placement, "placement", {"位置", "Placement", "Position"}, "placement"},
    {Tool::Border, "border", {"边框", "Border", "Bordure"}, "border"},
    {Tool::Film, "film", {"胶片", "Film", "Film"}, "film"},
    {Tool::Text, "text", {"文字", "Text", "Texte"}, "text", true},
    {Tool::Logo, "logo", {"徽标", "Logo", "Logo"}, "logo"},
    {Tool::Signature, "signature", {"签名", "Signature", "Signature"}, "signature"},
    {Tool::Camera, "camera", {"相机信息", "Camera info", "Infos photo"}, "camera"},
}};

} // namespace tarnovel::app
