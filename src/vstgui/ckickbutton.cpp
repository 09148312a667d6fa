#include "vstgui/ckickbutton.h"

void CKickButton::onMouseDown(CPoint, int) {
    beginEdit();
    setValue(1);
    notifyListener();
}

void CKickButton::onMouseUp() {
    setValue(0);
    notifyListener();
    endEdit();
}
