#pragma once
/// A button that is 1 while it is pressed; it tells its listener of the press and of the release.
/// All is [ui].

#include "vstgui/ccontrol.h"

class CKickButton final : public CControl {
public:
    CKickButton(const CRect& area, CControlListener* hearer, int number, int height, CBitmap* shown,
                CPoint start = {})
        : CControl(area, hearer, number, 2, height, shown, start) {}

    void onMouseDown(CPoint where, int buttons) override;
    void onMouseUp() override;

protected:
    [[nodiscard]] int shownPicture() const override { return getValue() != 0 ? 1 : 0; }
};
