#include "vstgui/ccontrol.h"

#include "vstgui/cframeowner.h"

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

void CControl::attach(CFrameOwner* newOwner, CDrawContext* picture) {
    frameOwner = newOwner;
    ownerLife = newOwner->getLife();
    drawnOn = picture;
}

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
    if (owner())
        owner()->beginEdit(tag);
}

void CControl::endEdit() {
    if (owner())
        owner()->endEdit(tag);
}

void CControl::doIdleStuff() {
    if (owner())
        owner()->doIdleStuff();
}

void CControl::notifyListener() {
    if (owner())
        listener->valueChanged(drawnOn, this);
}

void CControl::changeTo(float newValue) {
    beginEdit();
    setValue(newValue);
    notifyListener();
    endEdit();
}

CFrameOwner* CControl::owner() const { return ownerLife.expired() ? nullptr : frameOwner; }
