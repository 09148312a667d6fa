#pragma once
/// The base of all controls: a value from 0 to 1 under a tag, shown as one of several pictures that
/// stand below each other in a bitmap. The user's gestures come from the frame. All is [ui].

#include "vstgui/cbitmap.h"
#include "vstgui/ccontrollistener.h"
#include "vstgui/creferencecounter.h"
#include "vstgui/geometry.h"

#include <memory>

class CFrameOwner;

class CControl {
public:
    /// The first of `pictures`, each of that height, begins at `start` in the bitmap. The control
    /// shares the bitmap; the listener lives as long as the owner.
    CControl(const CRect& area, CControlListener* hearer, int number, int pictures, int height,
             CBitmap* shown, CPoint start = {});
    virtual ~CControl() = default;
    CControl(const CControl&) = delete;
    CControl& operator=(const CControl&) = delete;

    [[nodiscard]] const CRect& getViewSize() const { return viewSize; }
    [[nodiscard]] int getTag() const { return tag; }
    [[nodiscard]] CControlListener* getListener() const { return listener; }

    [[nodiscard]] float getValue() const { return value; }
    void setValue(float newValue); ///< clamped to 0 to 1; shown when the frame is next idle

    [[nodiscard]] float getDefaultValue() const { return defaultValue; }
    void setDefaultValue(float newValue) { defaultValue = newValue; }

    [[nodiscard]] bool isDirty() const { return dirty; }
    void setDirty(bool state = true) { dirty = state; }

    void draw(CDrawContext& context) const;

    /// The frame that shows the control tells it who owns both, and what they are drawn on.
    void attach(CFrameOwner* newOwner, CDrawContext* picture);

    /// Where a left press finds the control, it has the mouse until that button is up or lost.
    virtual void onMouseDown(CPoint /*where*/, int /*buttons*/) {}
    virtual void onMouseMoved(CPoint /*where*/, int /*buttons*/) {}
    virtual void onMouseUp() {}
    virtual bool onWheel(float /*notches*/, int /*buttons*/) { return false; } ///< true: taken

protected:
    [[nodiscard]] virtual int shownPicture() const = 0; ///< counted from 0

    // In each of these the host may get a turn, and close the effect: when the owner has gone they
    // do nothing.

    /// The brackets around a user's change, which reach the host through the owner.
    void beginEdit();
    void endEdit();

    void doIdleStuff(); ///< the owner's
    void notifyListener();

    /// A whole gesture: begin, change, end.
    void changeTo(float newValue);

    [[nodiscard]] CFrameOwner* owner() const; ///< null once it has gone

    const int nbPictures;

private:
    CRect viewSize;
    CControlListener* listener;
    int tag;
    int pictureHeight;
    CReference<CBitmap> bitmap;
    CPoint offset;
    CFrameOwner* frameOwner = nullptr;
    std::weak_ptr<void> ownerLife{};
    CDrawContext* drawnOn = nullptr;
    float value = 0;
    float defaultValue = 0;
    bool dirty = true;
};
