#pragma once
/// A display: the picture nearest to its value. It does not react to the mouse. All is [ui].

#include "vstgui/ccontrol.h"

class CMovieBitmap final : public CControl {
public:
    using CControl::CControl;

protected:
    [[nodiscard]] int shownPicture() const override;
};
