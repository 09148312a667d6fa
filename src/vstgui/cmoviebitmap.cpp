#include "vstgui/cmoviebitmap.h"

#include <cmath>

int CMovieBitmap::shownPicture() const {
    return static_cast<int>(std::lround(getValue() * static_cast<float>(nbPictures - 1)));
}
