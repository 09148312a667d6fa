#pragma once
/// A switch: a left click toggles it. It is on, and shows its lower picture, from 0.5 up. All is
/// [ui].

#include "vstgui/ccontrol.h"

/// Whether a clicked switch shows itself before it tells its listener, or when next idle.
enum COnOffButtonStyle : int { kPreListenerUpdate = 0, kPostListenerUpdate = 1 };

class COnOffButton final : public CControl {
public:
    COnOffButton(const CRect& area, CControlListener* hearer, int number, CBitmap* shown,
                 int style = kPreListenerUpdate)
        : CControl(area, hearer, number, 2, shown->getHeight() / 2, shown),
          showsFirst(style == kPreListenerUpdate) {}

    void onMouseDown(CPoint where, int buttons) override;

protected:
    [[nodiscard]] int shownPicture() const override { return isOn() ? 1 : 0; }

private:
    [[nodiscard]] bool isOn() const { return getValue() >= 0.5f; }

    bool showsFirst;
};
