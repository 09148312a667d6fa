#pragma once
/// What a frame and its controls know of whoever shows them. All is [ui].

#include <memory>

/// How a drag turns a knob.
enum CKnobMode : int {
    kCircularMode = 0,         ///< it points to the mouse
    kRelativeCircularMode = 1, ///< it turns with the mouse about it
    kLinearMode = 2,           ///< it follows the mouse up and down
};

class CFrameOwner {
public:
    // In each of these the host may get a turn, and end the owner.

    virtual void beginEdit(int tag) = 0; ///< the user took the control of that tag
    virtual void endEdit(int tag) = 0;   ///< and let it go
    virtual void
    doIdleStuff() = 0; ///< redraws and gives the host a turn, in the middle of a gesture

    /// Expires with the owner. Whoever gave the host a turn looks here afterwards.
    [[nodiscard]] std::weak_ptr<void> getLife() const { return ownLife; }

    [[nodiscard]] CKnobMode getKnobMode() const { return knobMode; }

    /// How many times as large as drawn for the smallest the panel is shown.
    [[nodiscard]] int getScale() const { return scale; }

protected:
    ~CFrameOwner() = default;

    CKnobMode knobMode = kRelativeCircularMode;
    int scale = 1;

private:
    std::shared_ptr<void> ownLife = std::make_shared<char>();
};
