#include "panel/panel_layout.h"

#include "control/control.h"
#include "panel/tags.h"
#include "vstgui/canimknob.h"
#include "vstgui/cframe.h"
#include "vstgui/ckickbutton.h"
#include "vstgui/cmoviebitmap.h"
#include "vstgui/conoffbutton.h"

#include <cstddef>
#include <memory>
#include <utility>

namespace {

/// Bitmaps go by their resource numbers.
constexpr int background_bitmap = 128;

struct panel_place {
    int tag;
    int bitmap;
    CPoint corner;
};

constexpr int nb_knob_pictures = 32;
constexpr panel_place knobs[] = {{8, 150, {216, 274}}, {7, 151, {90, 274}}, {6, 152, {341, 274}}};

constexpr panel_place switches[] = {{4, 153, {71, 112}},  {5, 154, {128, 112}},
                                    {0, 155, {184, 112}}, {1, 156, {240, 112}},
                                    {2, 157, {297, 112}}, {3, 158, {353, 112}}};

constexpr panel_place learn{MIDI_LEARN_TAG, 129, {306, 11}};
constexpr panel_place lamp{MIDI_IN_TAG, 130, {351, 11}};
constexpr panel_place panic{PANIC_TAG, 132, {398, 11}};

CReference<CBitmap> load(int number) { return CReference<CBitmap>::make(number); }

/// The place of a control whose bitmap stacks that many pictures.
CRect picture_area(const CBitmap& bitmap, int nb_pictures, CPoint corner) {
    return {corner.x, corner.y, corner.x + bitmap.getWidth(),
            corner.y + bitmap.getHeight() / nb_pictures};
}

template <typename Control>
Control* give(CFrame& frame, std::unique_ptr<Control> created) {
    Control* const given = created.get();
    frame.addView(std::move(created));
    return given;
}

CAnimKnob* add_knob(CFrame& frame, CControlListener* listener, const panel_place& place) {
    const auto bitmap = load(place.bitmap);
    const CRect area = picture_area(*bitmap, nb_knob_pictures, place.corner);
    return give(frame, std::make_unique<CAnimKnob>(area, listener, place.tag, nb_knob_pictures,
                                                   area.height(), bitmap.get()));
}

COnOffButton* add_switch(CFrame& frame, CControlListener* listener, const panel_place& place) {
    const auto bitmap = load(place.bitmap);
    const CRect area = picture_area(*bitmap, 2, place.corner);
    return give(frame, std::make_unique<COnOffButton>(area, listener, place.tag, bitmap.get()));
}

} // namespace

CReference<CBitmap> load_background() { return load(background_bitmap); }

std::vector<CControl*> add_parameter_controls(CFrame& frame, CControlListener* listener,
                                              const control& registry) {
    std::vector<CControl*> controls(registry.parameters.size());
    const auto add = [&](const panel_place& place, auto add_control) {
        const auto index = static_cast<std::size_t>(place.tag);
        if (index >= controls.size())
            return;
        controls[index] = add_control(frame, listener, place);
        controls[index]->setDefaultValue(registry.parameters[index]->default_value);
    };
    for (const panel_place& place : knobs)
        add(place, add_knob);
    for (const panel_place& place : switches)
        add(place, add_switch);
    return controls;
}

COnOffButton* add_learn_switch(CFrame& frame, CControlListener* listener) {
    return add_switch(frame, listener, learn);
}

CMovieBitmap* add_midi_lamp(CFrame& frame, CControlListener* listener) {
    const auto bitmap = load(lamp.bitmap);
    const CRect area = picture_area(*bitmap, 2, lamp.corner);
    return give(frame, std::make_unique<CMovieBitmap>(area, listener, lamp.tag, 2, area.height(),
                                                      bitmap.get()));
}

void add_panic_button(CFrame& frame, CControlListener* listener) {
    const auto bitmap = load(panic.bitmap);
    const CRect area = picture_area(*bitmap, 2, panic.corner);
    give(frame,
         std::make_unique<CKickButton>(area, listener, panic.tag, area.height(), bitmap.get()));
}
