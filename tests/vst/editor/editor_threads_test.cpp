#include "tests/vst/editor/panel_host.h"
#include "vst/editor/tags.h"
#include "vstgui/window_headless.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

/// An instrument from its creation on, with sound, automation and hands side by side.
void play_with_a_panel() {
    panel_host host;
    host.plugin->setSampleRate(48000);
    host.plugin->setBlockSize(64);
    headless_parent window;
    std::atomic<bool> done = false;

    std::thread audio([&] {
        std::vector<float> left(64), right(64);
        float* outputs[] = {right.data(), left.data()};
        for (int block = 0; !done; ++block) {
            send(*host.plugin, {{0, {0xB0, 80 + block % 9, block % 128}}});
            send(*host.plugin, {{0, {block % 2 == 0 ? 0x90 : 0x80, 48 + block % 49, 100}}});
            host.plugin->setParameter(block % 10, 0.5f);
            host.plugin->processReplacing(nullptr, outputs, 64);
        }
    });
    std::thread automation([&] {
        for (int i = 0; !done; ++i) {
            host.plugin->setParameter(i % 10, static_cast<float>(i % 100) / 100);
            char text[16];
            host.plugin->getParameterDisplay(i % 10, text);
            host.plugin->getParameter(i % 10);
        }
    });

    for (int opening = 0; opening < 10; ++opening) {
        EXPECT_TRUE(host.open(&window));
        for (int turn = 0; turn < 20; ++turn) {
            for (const CPoint place :
                 {control_places[6], control_places[0], learn_place, panic_place}) {
                window.listener->onMouseDown(place, kLButton);
                window.listener->onMouseMoved({place.x + 5 * turn, place.y - 20}, 0);
                window.listener->onMouseUp(place, kLButton);
            }
            host.plugin->setParameter(MENU_TAG, static_cast<float>(turn % 3));
            host.idle();
        }
        host.close();
    }
    done = true;
    audio.join();
    automation.join();
}

// A fault here is for ThreadSanitizer to see; elsewhere it is a crash at best.
TEST(EditorThreads, SoundAutomationHandsAndInstancesGoOnSideBySide) {
    std::thread other(play_with_a_panel);
    play_with_a_panel();
    other.join();
}

} // namespace
