#include "panel/panel_layout.h"

#include "control/control.h"
#include "panel/tags.h"
#include "vstgui/canimknob.h"
#include "vstgui/cframe.h"
#include "vstgui/ckickbutton.h"
#include "vstgui/cmoviebitmap.h"
#include "vstgui/conoffbutton.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
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

constexpr int nb_scales = 3;

/// What is larger has the number of the plain picture after a digit, its scale.
CReference<CBitmap> load(int number, int scale) {
    return CReference<CBitmap>::make(scale == 1 ? number : 1000 * scale + number);
}

/// What a control whose bitmap stacks that many pictures is made of.
struct placed_bitmap {
    placed_bitmap(const panel_place& place, int nb_pictures, int scale)
        : bitmap(load(place.bitmap, scale)),
          area{scale * place.corner.x, scale * place.corner.y,
               scale * place.corner.x + bitmap->getWidth(),
               scale * place.corner.y + bitmap->getHeight() / nb_pictures} {}

    CReference<CBitmap> bitmap;
    CRect area;
};

template <typename Control, typename... Arguments>
Control* give(CFrame& frame, Arguments&&... arguments) {
    auto created = std::make_unique<Control>(std::forward<Arguments>(arguments)...);
    Control* const given = created.get();
    frame.addView(std::move(created));
    return given;
}

/// A control that is told how many pictures it has.
template <typename Control>
Control* add_pictured(const panel_ground& ground, const panel_place& place, int nb_pictures) {
    const placed_bitmap placed(place, nb_pictures, ground.scale);
    return give<Control>(ground.frame, placed.area, ground.listener, place.tag, nb_pictures,
                         placed.area.height(), placed.bitmap.get());
}

CAnimKnob* add_knob(const panel_ground& ground, const panel_place& place) {
    return add_pictured<CAnimKnob>(ground, place, nb_knob_pictures);
}

COnOffButton* add_switch(const panel_ground& ground, const panel_place& place) {
    const placed_bitmap placed(place, 2, ground.scale);
    return give<COnOffButton>(ground.frame, placed.area, ground.listener, place.tag,
                              placed.bitmap.get());
}

} // namespace

std::optional<int> nearest_scale(double wanted) {
    if (!(wanted > 0))
        return std::nullopt;
    return static_cast<int>(std::lround(std::clamp<double>(wanted, 1, nb_scales)));
}

int default_scale() {
    const char* text = std::getenv("TINDELWAX_SCALE");
    int wanted = 1;
    if (text)
        std::from_chars(text, text + std::strlen(text), wanted);
    return nearest_scale(wanted).value_or(1);
}

CReference<CBitmap> load_background(int scale) { return load(background_bitmap, scale); }

std::vector<CControl*> add_parameter_controls(const panel_ground& ground, const control& registry) {
    std::vector<CControl*> controls(registry.parameters.size());
    const auto add = [&](const panel_place& place, auto add_control) {
        const auto index = static_cast<std::size_t>(place.tag);
        if (index >= controls.size())
            return;
        controls[index] = add_control(ground, place);
        controls[index]->setDefaultValue(registry.parameters[index]->default_value);
    };
    for (const panel_place& place : knobs)
        add(place, add_knob);
    for (const panel_place& place : switches)
        add(place, add_switch);
    return controls;
}

COnOffButton* add_learn_switch(const panel_ground& ground) { return add_switch(ground, learn); }

CMovieBitmap* add_midi_lamp(const panel_ground& ground) {
    return add_pictured<CMovieBitmap>(ground, lamp, 2);
}

void add_panic_button(const panel_ground& ground) {
    const placed_bitmap placed(panic, 2, ground.scale);
    give<CKickButton>(ground.frame, placed.area, ground.listener, panic.tag, placed.area.height(),
                      placed.bitmap.get());
}
