// What LV2 hosts hand over: sequences that say of themselves what they like, in memory that ends
// where they say, port values, and states. Whatever it was, what is saved after it can be restored.

#include "fuzz/fuzzed.h"
#include "lv2/organ.h"
#include "lv2/ports.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <lv2/midi/midi.h>
#include <memory>
#include <string_view>
#include <vector>

namespace {

constexpr LV2_URID sequence = 1, midi_event = 2, text = 3, state_instrument = 4, other = 5;

LV2_URID map_uri(void*, const char* uri) {
    const std::string_view asked = uri;
    return asked == LV2_ATOM__Sequence            ? sequence
           : asked == LV2_MIDI__MidiEvent         ? midi_event
           : asked == LV2_ATOM__String            ? text
           : asked == TINDELWAX_URI "#instrument" ? state_instrument
                                                  : other;
}

LV2_State_Status store(LV2_State_Handle kept, std::uint32_t key, const void* value,
                       std::size_t size, std::uint32_t, std::uint32_t) {
    const auto* const bytes = static_cast<const char*>(value);
    if (key == state_instrument)
        static_cast<std::vector<char>*>(kept)->assign(bytes, bytes + size);
    return LV2_STATE_SUCCESS;
}

const void* retrieve(LV2_State_Handle kept, std::uint32_t key, std::size_t* size,
                     std::uint32_t* type, std::uint32_t*) {
    const auto& bytes = *static_cast<const std::vector<char>*>(kept);
    *size = bytes.size();
    *type = key == state_instrument ? text : other;
    return bytes.data();
}

/// Plays a block with the bytes for a sequence's events. They lie in memory of just their size,
/// aligned.
void play(lv2_organ& organ, const std::vector<char>& events, LV2_URID type,
          std::uint32_t nb_frames) {
    const auto size = static_cast<std::uint32_t>(sizeof(LV2_Atom) + events.size());
    const auto memory = std::make_unique<char[]>(size);
    const LV2_Atom head{static_cast<std::uint32_t>(events.size()), type};
    std::memcpy(memory.get(), &head, sizeof head);
    std::ranges::copy(events, memory.get() + sizeof head);
    std::vector<float> right(nb_frames), left(nb_frames);
    organ.connect_port(port_midi, memory.get());
    organ.connect_port(port_left, left.data());
    organ.connect_port(port_right, right.data());
    organ.run(nb_frames);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    setenv("TINDELWAX_SEED", "1", 1);
    FuzzedDataProvider data(p_bytes, nb_bytes);
    lv2_organ organ(22050, {nullptr, map_uri});
    std::vector<float> values(10, 0.5f);
    for (std::uint32_t i = 0; i < values.size(); ++i)
        organ.connect_port(port_first_parameter + i, &values[i]);
    while (data.remaining_bytes() > 0) {
        const auto take_bytes = [&data] {
            return data.ConsumeBytes<char>(data.ConsumeIntegral<std::uint8_t>());
        };
        switch (data.ConsumeIntegralInRange(0, 3)) {
        case 0: {
            auto kept = take_bytes();
            static_cast<void>(organ.restore(retrieve, &kept));
            break;
        }
        case 1:
            values[data.ConsumeIntegralInRange<std::size_t>(0, values.size() - 1)] =
                std::bit_cast<float>(data.ConsumeIntegral<std::uint32_t>());
            break;
        default:
            const auto events = take_bytes();
            const auto type = data.ConsumeIntegralInRange<LV2_URID>(sequence, sequence + 1);
            play(organ, events, type, data.ConsumeIntegral<std::uint8_t>());
        }
    }
    std::vector<char> saved;
    require(organ.save(store, &saved) == LV2_STATE_SUCCESS);
    require(organ.restore(retrieve, &saved) == LV2_STATE_SUCCESS);
    return 0;
}
