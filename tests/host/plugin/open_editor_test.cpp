#include "plugin/open_editor.h"

#include "platform/display.h"
#include "platform/editor_window.h"
#include "tests/host/comes_true.h"
#include "tests/panel_picture/panel_picture.h"

#include <gtest/gtest.h>

namespace {

TEST(OpenEditor, TellsOfWhatThePlayerMovesAndOfNothingElse) {
    const display server{display::choice::unseen};
    for (const char* file : {TEST_INSTRUMENT, TEST_CLAP, TEST_LV2})
        for (const bool plays : {false, true}) {
            const auto instrument = plugin_load(file);
            std::string told;
            instrument->set_listener([&told](const panel_edit& edit) {
                constexpr char steps[] = {'b', 's', 'e'};
                told += steps[static_cast<int>(edit.what)] + std::to_string(edit.parameter);
                if (edit.what == panel_edit::step::sets)
                    told += '=' + std::to_string(edit.value);
            });
            editor_window window{480, 400};
            open_editor editor{*instrument, window.handle()};
            instrument->prepare(48000, 64);
            if (plays) {
                instrument->start();
                event_list by_controller;
                by_controller.add_midi(std::array<std::uint8_t, 3>{0xB0, 80, 0}, 0);
                instrument->send(by_controller);
                instrument->process();
                const float expected = file == std::string{TEST_LV2} ? 1 : 0; // its port stays
                EXPECT_EQ(instrument->parameter(0), expected);
            }
            window.move({control_places[3].x, control_places[3].y});
            window.press();
            const auto tells_all = [&] {
                editor.idle();
                if (plays)
                    instrument->process();
                return told == "b3s3=0.000000e3";
            };
            EXPECT_TRUE(comes_true(tells_all)) << file << (plays ? " plays: " : ": ") << told;
        }
}

} // namespace
