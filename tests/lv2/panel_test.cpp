#include "platform/display.h"
#include "platform/window_size.h"
#include "tests/lv2/lv2_host.h"
#include "tests/panel_picture/panel_picture.h"

#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

namespace {

constexpr std::uint32_t flute = port_first_parameter, volume = flute + 6;
constexpr int controller = 20;

/// One note of what the panel did: a touch's begin or end, or a value.
struct told {
    std::uint32_t port;
    float value;
    char what;
    bool operator==(const told&) const = default;
};

struct Lv2Panel : testing::Test {
    ~Lv2Panel() override {
        if (panel)
            entry->cleanup(panel);
    }

    LV2UI_Handle open(void* parent, bool hands_over, const char* plugin = TINDELWAX_URI,
                      float scale = 1) {
        LV2UI_Resize resize{this, [](void* test, int width, int height) {
                                static_cast<Lv2Panel*>(test)->size = {width, height};
                                return 0;
                            }};
        touch = {this, [](void* test, std::uint32_t port, bool grabbed) {
                     static_cast<Lv2Panel*>(test)->heard.push_back({port, 0, grabbed ? 'b' : 'e'});
                 }};
        LV2_URID_Map map{nullptr, [](void*, const char* uri) { return urid(uri); }};
        const auto number = urid(LV2_ATOM__Float);
        const LV2_Options_Option options[] = {
            {LV2_OPTIONS_INSTANCE, 0, urid("urn:other"), sizeof scale, number, &volume},
            {LV2_OPTIONS_INSTANCE, 0, urid(LV2_UI__scaleFactor), sizeof scale, number, &scale},
            {}};
        const LV2_Feature all[] = {{LV2_UI__parent, parent},
                                   {LV2_UI__resize, &resize},
                                   {LV2_UI__touch, &touch},
                                   {LV2_URID__map, &map},
                                   {LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)},
                                   {LV2_INSTANCE_ACCESS_URI, host.instance}};
        const LV2_Feature* const offered[] = {
            &all[0], &all[1], &all[2], &all[3], &all[4], hands_over ? &all[5] : nullptr, nullptr};
        const auto write = [](void* test, std::uint32_t port, std::uint32_t nb_bytes,
                              std::uint32_t protocol, const void* value) {
            ASSERT_EQ(nb_bytes, sizeof(float));
            ASSERT_EQ(protocol, 0u);
            static_cast<Lv2Panel*>(test)->heard.push_back(
                {port, *static_cast<const float*>(value), 'v'});
        };
        return entry->instantiate(entry, plugin, "", write, this, &widget, offered);
    }

    void hear(std::uint32_t port, float value, std::uint32_t format = 0) const {
        entry->port_event(panel, port, sizeof value, format, &value);
    }
    void idle() const {
        static_cast<const LV2UI_Idle_Interface*>(entry->extension_data(LV2_UI__idleInterface))
            ->idle(panel);
    }
    void act(void (editor_window::*happens)()) {
        (window.*happens)();
        idle();
    }
    void click(CPoint place) {
        window.move({place.x, place.y});
        act(&editor_window::press);
        act(&editor_window::release);
    }

    /// Returns "" once the panel shows these values, and its actions so.
    std::string differs(const std::array<float, nb_parameters>& values, bool learn = false,
                        bool lamp = false) {
        panel_state state{.learn = learn, .lamp = lamp};
        std::copy_n(values.begin(), state.values.size(), state.values.begin());
        idle();
        idle(); // draws what the first has found
        return shown_difference(window, panel_picture(state));
    }

    const LV2UI_Descriptor* entry = panel_entry(0);
    display server{display::choice::unseen};
    editor_window window{480, 400};
    lv2_host host{};
    LV2UI_Touch touch{};
    LV2UI_Handle panel = nullptr;
    LV2UI_Widget widget = nullptr;
    std::pair<int, int> size{};
    std::vector<told> heard{};
};

TEST_F(Lv2Panel, IsRefusedWhereItCannotBeShown) {
    EXPECT_EQ(panel_entry(1), nullptr);
    EXPECT_EQ(entry->extension_data("urn:other"), nullptr);
    EXPECT_EQ(open(nullptr, true), nullptr);
    EXPECT_EQ(open(&window, true), nullptr) << "in what is no window";
    EXPECT_EQ(open(window.handle(), true, "urn:other"), nullptr);
    EXPECT_EQ(size.first, 0);
}

TEST_F(Lv2Panel, ShowsTheInstrumentThatIsHandedOver) {
    unsetenv("TINDELWAX_SEED");
    host.run(64);
    ASSERT_NE(panel = open(window.handle(), true), nullptr);
    EXPECT_EQ(size, std::pair(480, 400));
    EXPECT_NE(widget, window.handle());
    const auto [width, height] = window_size_of(widget);
    EXPECT_EQ(size, std::pair(width, height));
    auto values = host.ports;
    EXPECT_EQ(differs(values), "");

    host.ports[6] = values[6] = 0.75f;
    host.run(64);
    hear(flute, 0);
    EXPECT_EQ(differs(values), "") << "what the host says is the instrument's to hear";

    for (int i = 0; i < 3; ++i) {
        const kept_state another = lv2_host{}.save();
        ASSERT_EQ(host.restore(another), LV2_STATE_SUCCESS);
        host.run(64);
        EXPECT_EQ(differs(values), "");
        heard.clear();
        click(control_places[0]);
        values[0] = 0;
        host.ports[0] = 0;
        EXPECT_EQ(heard, (std::vector<told>{{flute, 0, 'b'}, {flute, 0, 'v'}, {flute, 0, 'e'}}));
        EXPECT_EQ(differs(values), "");
        click(learn_place);
        EXPECT_EQ(differs(values, true), "");
        for (const int value : {1, 127})
            host.run(64, {0xB0, controller + i, value});
        values[0] = 1;
        EXPECT_EQ(differs(values, false, true), "") << "the port has said nothing else";
        host.ports[0] = 1;
        click(learn_place); // which the next instrument knows nothing of
    }
    host.run(480, {0x90, 60, 100});
    click(panic_place);
    host.run(48000);
    host.run(64);
    EXPECT_LT(std::ranges::max(host.outputs[0]), 1e-5f);
}

TEST_F(Lv2Panel, IsAsLargeAsTheHostSaysOrTheEnvironment) {
    setenv("TINDELWAX_SCALE", "2", 1);
    for (const auto& [told_scale, scale] : {std::pair{0.0f, 2}, {1.0f, 1}, {2.6f, 3}}) {
        ASSERT_NE(panel = open(window.handle(), true, TINDELWAX_URI, told_scale), nullptr);
        EXPECT_EQ(size, std::pair(480 * scale, 400 * scale)) << told_scale;
        entry->cleanup(std::exchange(panel, nullptr));
    }
    unsetenv("TINDELWAX_SCALE");
}

TEST_F(Lv2Panel, ShowsThePortsOfAnInstrumentOutOfReach) {
    ASSERT_NE(panel = open(window.handle(), false), nullptr);
    std::array<float, nb_parameters> values{0, 1, 0, 0, 0, 1, 0.25f, 0.5f, 0.75f, 1};
    for (std::uint32_t i = 0; i < nb_parameters; ++i)
        hear(port_first_parameter + i, values[i]);
    hear(flute, 1, 1);
    entry->port_event(panel, flute, 1, 0, &values[1]);
    for (const std::uint32_t port : {0u, port_first_parameter + 10, UINT32_MAX})
        hear(port, 1);
    EXPECT_EQ(differs(values), "");

    click(learn_place);
    EXPECT_EQ(differs(values), "") << "nothing could be learned";

    window.move({control_places[6].x, control_places[6].y});
    act(&editor_window::press);
    hear(volume, 1);
    hear(flute, values[0] = 1);
    EXPECT_EQ(differs(values), "") << "what the user holds stays";
    act(&editor_window::release);
    hear(volume, values[6] = 1);
    EXPECT_EQ(differs(values), "");

    click(control_places[0]);
    EXPECT_EQ(heard.back(), (told{flute, 0, 'e'}));
    values[0] = 0;
    EXPECT_EQ(differs(values), "");
}

} // namespace
