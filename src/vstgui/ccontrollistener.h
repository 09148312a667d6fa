#pragma once
/// Whom a control tells that the user changed it. All is [ui].

class CControl;
class CDrawContext;

class CControlListener {
public:
    /// `context` is the picture that the control is drawn on.
    virtual void valueChanged(CDrawContext* context, CControl* control) = 0;

    /// A click came with a modifier; `button` is a set of CButton. Non-zero says that it is handled
    /// and that the control shall leave it alone.
    virtual int controlModifierClicked(CDrawContext*, CControl*, int /*button*/) { return 0; }

protected:
    ~CControlListener() = default;
};
