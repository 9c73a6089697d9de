#pragma once

#include <QString>

/// Names of things that another system has and this one calls differently.
namespace tarnovel::app::Wording {

/// `text` with this system's own names: Ctrl for ⌘, the file manager for Finder, the pictures folder for the
/// photo library. This is the one place that knows them.
QString local(QString text);

} // namespace tarnovel::app::Wording
