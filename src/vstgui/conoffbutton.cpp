#include "vstgui/conoffbutton.h"

#include "vstgui/aeffguieditor.h"

void COnOffButton::onMouseDown(CPoint, int) {
    beginEdit();
    setValue(isOn() ? 0.0f : 1.0f);
    if (showsFirst)
        editor().doIdleStuff();
    notifyListener();
    endEdit();
}
