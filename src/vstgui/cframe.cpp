#include "vstgui/cframe.h"

#include <algorithm>
#include <utility>

CFrame::CFrame(const CRect& size, void* parent, CFrameOwner* owner)
    : frameOwner(owner),
      context(size.width(), size.height()),
      window(open_platform_window(parent, context, *this)) {}

CFrame::~CFrame() = default;

void CFrame::setBackground(CBitmap* bitmap) {
    background = CReference(bitmap);
    composed = false;
}

void CFrame::addView(std::unique_ptr<CControl> view) {
    view->attach(frameOwner, &context);
    views.push_back(std::move(view));
    composed = false;
}

void CFrame::idle() {
    const CReference keep(this);
    window->handleEvents();
    redraw();
}

void CFrame::redraw() {
    if (detached)
        return;
    if (!std::exchange(composed, true)) {
        for (const auto& view : views)
            view->setDirty(false);
        show(context.bounds());
    }
    for (const auto& view : views) {
        if (!view->isDirty())
            continue;
        view->setDirty(false);
        show(view->getViewSize());
    }
}

void CFrame::show(const CRect& area) {
    context.setClip(area);
    if (background)
        background->draw(context, context.bounds());
    for (const auto& view : views)
        view->draw(context);
    window->put(area);
}

bool CFrame::onWheel(float notches) { return turnWheel(notches, 0); }

void CFrame::detach() {
    releaseMouse();
    detached = true;
}

void CFrame::onExpose(const CRect& area) {
    redraw();
    if (!detached)
        window->put(area);
}

void CFrame::onMouseDown(CPoint where, int buttons) {
    const CReference keep(this);
    pointer = where;
    CControl* view = viewAt(where);
    if (detached || (buttons & kLButton) == 0 || !view)
        return;
    releaseMouse(); // a release that never came
    if (detached || isClaimed(*view, buttons))
        return;
    mouseOwner = view;
    view->onMouseDown(where, buttons);
}

/// Whether the listener takes a click with a modifier for itself.
bool CFrame::isClaimed(CControl& view, int buttons) {
    return (buttons & (kShift | kControl | kAlt)) != 0
           && view.getListener()->controlModifierClicked(&context, &view, buttons) != 0;
}

void CFrame::onMouseUp(CPoint where, int buttons) {
    const CReference keep(this);
    pointer = where;
    if ((buttons & kLButton) != 0)
        releaseMouse();
}

void CFrame::onMouseMoved(CPoint where, int buttons) {
    const CReference keep(this);
    pointer = where;
    if (mouseOwner)
        mouseOwner->onMouseMoved(where, buttons);
}

bool CFrame::onMouseWheel(CPoint where, float notches, int buttons) {
    pointer = where;
    return turnWheel(notches, buttons);
}

void CFrame::onMouseLost() {
    const CReference keep(this);
    releaseMouse();
}

bool CFrame::turnWheel(float notches, int buttons) {
    const CReference keep(this);
    if (mouseOwner) // in the middle of a drag it is for nobody, and not for what lies behind
        return true;
    CControl* view = detached ? nullptr : viewAt(pointer);
    return view && view->onWheel(notches, buttons);
}

void CFrame::releaseMouse() {
    if (CControl* owner = std::exchange(mouseOwner, nullptr))
        owner->onMouseUp();
}

CControl* CFrame::viewAt(CPoint where) const {
    const auto found = std::find_if(views.rbegin(), views.rend(), [where](const auto& view) {
        return view->getViewSize().contains(where);
    });
    return found == views.rend() ? nullptr : found->get();
}
