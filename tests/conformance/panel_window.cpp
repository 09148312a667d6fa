#include "conformance/panel_window.h"

#include "tests/panel_picture/panel_picture.h"
#ifndef _WIN32
#include "platform/display.h"
#endif

#include <stdexcept>

namespace {

/// One for all rows. Windows has its own.
window_place corner_on_display() {
#ifndef _WIN32
    static const display unseen{display::choice::unseen};
    if (!unseen.error.empty())
        throw std::runtime_error(unseen.error);
#endif
    return {40, 30};
}

} // namespace

panel_window::panel_window(int scale)
    : editor_window(480 * scale, 400 * scale, corner_on_display()), scale_(scale) {
    if (!handle())
        throw std::runtime_error("no window can be shown; run it where there is a display");
    take_keys();
}

std::string panel_window::difference(const CDrawContext& expected) const {
    return shown_difference(*this, expected, 0, scale_);
}
