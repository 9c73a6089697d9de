#pragma once

/// When a press is more than a click.
namespace tarnovel::app::Press {

/// Held this long, it asks for the menu.
inline constexpr int menuMs = 500;
/// Held this long, it lifts what is under it.
inline constexpr int liftMs = 350;
/// How far it goes, in logical pixels, before it moves a picture on the canvas, where small moves are meant,
/// and before it takes an item out of its row.
inline constexpr int movesPicture = 3;
inline constexpr int takesItem = 6;

} // namespace tarnovel::app::Press
