#include "vstgui/canimknob.h"

#include "vstgui/cbutton.h"
#include "vstgui/cframeowner.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double sweep = 300.0 / 180 * std::numbers::pi; ///< radians, from 7 to 5 o'clock
constexpr double linear_travel = 200;                    ///< pixels upwards from 0 to 1, at scale 1
constexpr double blind_radius = 2; ///< and to the axis: nearer by, a pixel is too large an angle
constexpr float wheel_step = 0.01f;

bool is_fine(int buttons) { return (buttons & kShift) != 0; }

float fineness(int buttons) { return is_fine(buttons) ? 0.25f : 1.0f; }

} // namespace

int CAnimKnob::shownPicture() const {
    return static_cast<int>(getValue() * static_cast<float>(nbPictures - 1));
}

void CAnimKnob::onMouseDown(CPoint where, int buttons) {
    if ((buttons & (kDoubleClick | kControl)) != 0) {
        changeTo(getDefaultValue());
        return;
    }
    dragging = true;
    last = where;
    lastAngle = angleOf(where);
    beginEdit(); // which may end the drag, and the editor
    if (dragging && owner()->getKnobMode() == kCircularMode && !is_fine(buttons))
        turnTo(static_cast<float>(0.5 + lastAngle / sweep));
}

void CAnimKnob::onMouseMoved(CPoint where, int buttons) {
    if (!dragging)
        return;
    const double angle = angleOf(where);
    const double turned = follow(where, angle, buttons);
    last = where;
    lastAngle = angle;
    turnTo(static_cast<float>(turned)); // in which the host may let the next move come
}

double CAnimKnob::follow(CPoint where, double angle, int buttons) const {
    const double now = getValue();
    const CKnobMode mode = owner()->getKnobMode();
    if (mode == kLinearMode)
        return now + (last.y - where.y) / (linear_travel * owner()->getScale()) * fineness(buttons);
    if (mode == kCircularMode && !is_fine(buttons)) {
        const double under = std::clamp(0.5 + angle / sweep, 0.0, 1.0);
        // Across the gap at 6 o'clock the knob stays at the end where it is.
        return std::abs(under - now) > 0.5 ? std::round(now) : under;
    }
    return now
           + std::remainder(angle - lastAngle, 2 * std::numbers::pi) / sweep * fineness(buttons);
}

void CAnimKnob::onMouseUp() {
    if (!dragging)
        return;
    dragging = false;
    endEdit();
}

bool CAnimKnob::onWheel(float notches, int buttons) {
    changeTo(getValue() + notches * wheel_step * fineness(buttons));
    return true;
}

void CAnimKnob::turnTo(float newValue) {
    const float before = getValue();
    setValue(newValue);
    if (getValue() == before)
        return;
    notifyListener();
    doIdleStuff(); // hosts may idle too seldom for it to be seen to turn
}

/// Clockwise from 12 o'clock, -pi to pi; the last angle where there is none.
double CAnimKnob::angleOf(CPoint where) const {
    const CRect& area = getViewSize();
    const double right = where.x + 0.5 - (area.left + area.right) / 2.0;
    const double up = (area.top + area.bottom) / 2.0 - (where.y + 0.5);
    return std::hypot(right, up) < blind_radius * owner()->getScale() ? lastAngle
                                                                      : std::atan2(right, up);
}
