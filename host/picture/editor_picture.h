#pragma once
/// What a plug-in's editor looks like.

#include "platform/editor_window.h"
#include "plugin/plugin.h"

/// Opens the plug-in's editor in a window, waits until its picture stands still, and closes it. An
/// editor that never stands still is pictured after some seconds. Throws a failure if the plug-in
/// or the screen shows none; needs a display.
[[nodiscard]] picture editor_picture(plugin& instrument);
