#pragma once
/// The button that an event is about and the keys held with it, as bits.

enum CButton : int {
    kLButton = 1 << 0,
    kMButton = 1 << 1,
    kRButton = 1 << 2,
    kShift = 1 << 3,
    kControl = 1 << 4,
    kAlt = 1 << 5,
    kDoubleClick = 1 << 6, ///< a press soon after another at the same place
};
