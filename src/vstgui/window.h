#pragma once
/// A window inside the host's, pictures on it and the mouse. Each system's source stands beside
/// this page, by its name: xcb, win32, and headless, which tests put in their place. All is [ui].

#include "vstgui/cbutton.h"
#include "vstgui/cdrawcontext.h"
#include "vstgui/geometry.h"

#include <memory>

/// Whom a window tells what happens on it. Any of these calls but the first may end the window.
class PlatformWindowListener {
public:
    virtual void onExpose(const CRect& area) = 0; ///< to bring the picture up to date, and put it
    virtual void onMouseDown(CPoint where, int buttons) = 0;
    virtual void onMouseUp(CPoint where, int buttons) = 0;
    /// While a button is down the pointer is followed beyond the window's edges.
    virtual void onMouseMoved(CPoint where, int buttons) = 0;
    /// Up is positive. Returns whether the turn is taken, and not for whatever lies behind.
    virtual bool onMouseWheel(CPoint where, float notches, int buttons) = 0;
    virtual void onMouseLost() = 0; ///< no onMouseUp will follow

protected:
    ~PlatformWindowListener() = default;
};

/// A window inside the host's; destruction closes it. It never takes the keyboard. When its parent
/// or the display goes first it stays silent, and what is put on it is lost.
class PlatformWindow {
public:
    virtual ~PlatformWindow() = default;

    /// As the system knows it, see `parent` below.
    [[nodiscard]] virtual void* getHandle() = 0;

    /// Shows an area of the picture at the same place of the window. A display that does not
    /// answer gets it as it then is, once it does: nobody waits for it.
    virtual void put(const CRect& area) = 0;

    /// Tells the listener what has happened. A window whose system calls by itself has nothing to
    /// do here.
    virtual void handleEvents() = 0;
};

/// Opens a window that shows a picture, in whose size it is. Returns null when the system can show
/// no window there. `parent` is the host's own window, as the host's system knows it: an X11
/// window's number, or a HWND. Picture and listener outlive the window.
[[nodiscard]] std::unique_ptr<PlatformWindow>
open_platform_window(void* parent, const CDrawContext& picture, PlatformWindowListener& listener);
