#include "vstgui/ccontrol.h"

#include "vst/editor/aeffguieditor.h"
#include "vstgui/cframe.h"

#include <algorithm>

CControl::CControl(const CRect& area, CControlListener* hearer, int number, int pictures,
                   int height, CBitmap* shown, CPoint start)
    : nbPictures(pictures),
      viewSize(area),
      listener(hearer),
      tag(number),
      pictureHeight(height),
      bitmap(shown),
      offset(start) {}

void CControl::setValue(float newValue) {
    newValue = std::clamp(newValue, 0.0f, 1.0f);
    if (newValue == value)
        return;
    value = newValue;
    dirty = true;
}

void CControl::draw(CDrawContext& context) const {
    bitmap->draw(context, viewSize, {offset.x, offset.y + shownPicture() * pictureHeight});
}

void CControl::beginEdit() {
    if (editor())
        editor()->beginEdit(tag);
}

void CControl::endEdit() {
    if (editor())
        editor()->endEdit(tag);
}

void CControl::doIdleStuff() {
    if (editor())
        editor()->doIdleStuff();
}

void CControl::notifyListener() {
    if (editor())
        listener->valueChanged(&frame->getContext(), this);
}

void CControl::changeTo(float newValue) {
    beginEdit();
    setValue(newValue);
    notifyListener();
    endEdit();
}

AEffGUIEditor* CControl::editor() const { return frame->getEditor(); }
