#pragma once
/// A knob. A drag turns it as the owner's knob mode says, and the wheel by a hundredth a notch;
/// with Shift both turn it by a quarter of that, from where it is. A double click or a click with
/// Ctrl brings its default back. All is [ui].

#include "vstgui/ccontrol.h"

class CAnimKnob final : public CControl {
public:
    using CControl::CControl;

    void onMouseDown(CPoint where, int buttons) override;
    void onMouseMoved(CPoint where, int buttons) override;
    void onMouseUp() override;
    bool onWheel(float notches, int buttons) override;

protected:
    [[nodiscard]] int shownPicture() const override;

private:
    void turnTo(float newValue);
    /// Returns the value that a drag to there, at that angle, gives.
    [[nodiscard]] double follow(CPoint where, double angle, int buttons) const;
    [[nodiscard]] double angleOf(CPoint where) const;

    bool dragging = false;
    CPoint last{};        ///< where the drag last was
    double lastAngle = 0; ///< radians, of the pointer about the knob
};
