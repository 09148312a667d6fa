#pragma once
/// An instrument without a display in the hands of a host, with the same random draws each time.

#include "plugin/event_list.h"
#include "plugin/host.h"
#include "vst/vstplugmain.h"
#include "vstgui/window_headless.h"

#include <cstdlib>
#include <utility>
#include <vector>

struct instrument {
    explicit instrument(host_answers answered = answer_version) : answers(std::move(answered)) {
        setenv("TINDELWAX_SEED", "1", 1);
        record = effect_create(VSTPluginMain, answers);
    }
    ~instrument() {
        if (record)
            ask(effClose);
    }
    instrument(const instrument&) = delete;
    instrument& operator=(const instrument&) = delete;

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                  float opt = 0) {
        AEffect* const asked = opcode == effClose ? std::exchange(record, nullptr) : record;
        return asked->dispatcher(asked, opcode, index, value, ptr, opt);
    }

    headless_parent parent{}; ///< of its panel
    host_answers answers;
    AEffect* record = nullptr; ///< null once it is closed, or where the host was refused
};

/// Plays a block into memory of just its size.
inline void play(AEffect* record, VstInt32 nb_frames) {
    std::vector<float> right(static_cast<std::size_t>(nb_frames)), left(right);
    float* outputs[] = {right.data(), left.data()};
    record->processReplacing(record, nullptr, outputs, nb_frames);
}
