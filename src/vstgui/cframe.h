#pragma once
/// The panel: a window inside the host's, a background and the controls on it. It composes what
/// changed in memory, shows each area at once, and hands the mouse to the control that has it.
///
/// A gesture may make the host close the panel, and the effect with it, while the frame is still at
/// work: whoever lets it go detaches it first, and it lives until that work is done. All is [ui].

#include "vstgui/cbitmap.h"
#include "vstgui/ccontrol.h"
#include "vstgui/cdrawcontext.h"
#include "vstgui/creferencecounter.h"
#include "vstgui/window.h"

#include <memory>
#include <vector>

class CFrameOwner;

class CFrame final : public CReferenceCounter, private PlatformWindowListener {
public:
    /// `parent` is the host's window.
    CFrame(const CRect& size, void* parent, CFrameOwner* owner);

    [[nodiscard]] bool isOpen() const { return window != nullptr; } ///< false: it cannot be shown
    [[nodiscard]] void* getHandle() const { return window->getHandle(); } ///< while it is open

    void setBackground(CBitmap* bitmap);

    /// Later views are drawn over earlier ones, and get the mouse before them.
    void addView(std::unique_ptr<CControl> view);

    /// Lets the window tell what happened, then redraws.
    void idle();

    /// Shows every view whose value changed since it was drawn last.
    void redraw();

    /// Turns the wheel where the pointer was last; returns whether a view took it.
    bool onWheel(float notches);

    /// Ends what the user is doing. The frame does nothing any more.
    void detach();

private:
    ~CFrame() override;

    void onExpose(const CRect& area) override;
    void onMouseDown(CPoint where, int buttons) override;
    void onMouseUp(CPoint where, int buttons) override;
    void onMouseMoved(CPoint where, int buttons) override;
    bool onMouseWheel(CPoint where, float notches, int buttons) override;
    void onMouseLost() override;

    [[nodiscard]] CControl* viewAt(CPoint where) const;
    bool isClaimed(CControl& view, int buttons);
    bool turnWheel(float notches, int buttons);
    void show(const CRect& area);
    void releaseMouse();

    CFrameOwner* frameOwner;
    CDrawContext context;
    CReference<CBitmap> background{};
    std::vector<std::unique_ptr<CControl>> views{};
    CControl* mouseOwner = nullptr; ///< since a left press
    CPoint pointer{-1, -1};         ///< where it was last
    bool composed = false;          ///< whether the context holds the panel
    bool detached = false;
    std::unique_ptr<PlatformWindow> window; ///< goes first: the rest is there while it speaks
};
