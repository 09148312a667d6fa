#pragma once
/// A host for the bundle's library, by the interface alone.

#include "check/watched_calls.h"
#include "lv2/ports.h"
#include "platform/library.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/midi/midi.h>
#include <lv2/state/state.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>
#include <map>
#include <numeric>
#include <string>
#include <vector>

constexpr std::size_t nb_parameters = 10;

/// Numbers by the order in which they are asked for, the same for all hosts of the test.
inline LV2_URID urid(const std::string& uri) {
    static std::map<std::string, LV2_URID> known;
    return known.try_emplace(uri, static_cast<LV2_URID>(known.size()) + 1).first->second;
}

template <typename Door>
auto lv2_door(const char* name, std::uint32_t index) {
    static const library loaded{TEST_LV2_LIBRARY};
    const auto door = reinterpret_cast<Door>(loaded.find(name));
    return door ? door(index) : nullptr;
}

inline const LV2_Descriptor* lv2_entry(std::uint32_t index) {
    return lv2_door<LV2_Descriptor_Function>("lv2_descriptor", index);
}

inline const LV2UI_Descriptor* panel_entry(std::uint32_t index) {
    return lv2_door<LV2UI_DescriptorFunction>("lv2ui_descriptor", index);
}

/// Events one after the other, in room that has bytes behind the last.
class atom_sequence {
public:
    atom_sequence() { head().atom = {sizeof(LV2_Atom_Sequence_Body), urid(LV2_ATOM__Sequence)}; }

    /// Of any type and length; what it says of its length may be another.
    void add(long frame, const std::vector<int>& bytes, const char* type = LV2_MIDI__MidiEvent,
             std::uint32_t more_than_there_are = 0) {
        LV2_Atom_Event event{};
        event.time.frames = frame;
        event.body.size = static_cast<std::uint32_t>(bytes.size()) + more_than_there_are;
        event.body.type = urid(type);
        std::byte* const at =
            reinterpret_cast<std::byte*>(words.data()) + sizeof(LV2_Atom) + head().atom.size;
        std::memcpy(at, &event, sizeof event);
        std::ranges::transform(bytes, at + sizeof event, [](int byte) { return std::byte(byte); });
        head().atom.size += static_cast<std::uint32_t>((sizeof event + bytes.size() + 7) / 8 * 8);
    }

    LV2_Atom_Sequence& head() { return *reinterpret_cast<LV2_Atom_Sequence*>(words.data()); }

private:
    std::vector<std::uint64_t> words = std::vector<std::uint64_t>(1 << 14);
};

struct kept_property {
    std::string bytes;
    std::uint32_t type;
    bool operator==(const kept_property&) const = default;
};
using kept_state = std::map<std::uint32_t, kept_property>;

class lv2_host {
public:
    explicit lv2_host(double rate = 48000) {
        LV2_URID_Map map{nullptr, [](void*, const char* uri) { return urid(uri); }};
        const LV2_Feature feature{LV2_URID__map, &map};
        const LV2_Feature* const features[] = {&feature, nullptr};
        instance = plugin->instantiate(plugin, rate, "", features);
        state =
            static_cast<const LV2_State_Interface*>(plugin->extension_data(LV2_STATE__interface));
        connect(port_midi, nullptr);
        for (std::uint32_t i = 0; i < nb_parameters; ++i)
            connect(port_first_parameter + i, &ports[i]);
        plugin->activate(instance);
    }
    ~lv2_host() { plugin->cleanup(instance); }
    lv2_host(const lv2_host&) = delete;
    lv2_host& operator=(const lv2_host&) = delete;

    void connect(std::uint32_t port, void* memory) { plugin->connect_port(instance, port, memory); }

    /// Plays a block; its samples are in `outputs`. Nothing in it may hold the audio thread up.
    void run(std::size_t nb_frames, LV2_Atom_Sequence* events = nullptr) {
        connect(port_midi, events);
        for (std::uint32_t i = 0; i < outputs.size(); ++i) {
            outputs[i].assign(nb_frames, 7.0f);
            connect(port_left + i, outputs[i].data());
        }
        watched_calls_begin();
        plugin->run(instance, static_cast<std::uint32_t>(nb_frames));
        const watched_calls calls = watched_calls_end();
        EXPECT_EQ(std::accumulate(std::begin(calls.nb), std::end(calls.nb), 0L), 0);
    }
    void run(std::size_t nb_frames, const std::vector<int>& message) {
        atom_sequence events;
        events.add(0, message);
        run(nb_frames, &events.head());
    }

    [[nodiscard]] kept_state save() const {
        kept_state kept;
        EXPECT_EQ(state->save(
                      instance,
                      [](LV2_State_Handle handle, std::uint32_t key, const void* value,
                         std::size_t size, std::uint32_t type, std::uint32_t) {
                          static_cast<kept_state*>(handle)->insert(
                              {key, {{static_cast<const char*>(value), size}, type}});
                          return LV2_STATE_SUCCESS;
                      },
                      &kept, 0, nullptr),
                  LV2_STATE_SUCCESS);
        return kept;
    }

    [[nodiscard]] LV2_State_Status restore(kept_state kept) const {
        return state->restore(
            instance,
            [](LV2_State_Handle handle, std::uint32_t key, std::size_t* size, std::uint32_t* type,
               std::uint32_t*) -> const void* {
                const auto& all = *static_cast<kept_state*>(handle);
                const auto found = all.find(key);
                if (found == all.end())
                    return nullptr;
                *size = found->second.bytes.size();
                *type = found->second.type;
                return found->second.bytes.data();
            },
            &kept, 0, nullptr);
    }

    const LV2_Descriptor* plugin = lv2_entry(0);
    LV2_Handle instance = nullptr;
    std::array<float, nb_parameters> ports{1, 1, 1, 1, 0, 1, 0.5f, 0.1f, 0.5f, 1};
    std::array<std::vector<float>, 2> outputs{};

private:
    const LV2_State_Interface* state = nullptr;
};
