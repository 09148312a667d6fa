#include "vstgui/conoffbutton.h"

void COnOffButton::onMouseDown(CPoint, int) {
    beginEdit();
    setValue(isOn() ? 0.0f : 1.0f);
    if (showsFirst)
        doIdleStuff();
    notifyListener();
    endEdit();
}
