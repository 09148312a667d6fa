#include "wasm/engine.h"

#include "factory_registrations/factory_registrations.h"
#include "instrument/registration.h"
#include "player/parameter_text.h"

#include <algorithm>
#include <span>

namespace {

parameter& parameter_of(engine* p_engine, int index) noexcept {
    return *p_engine->played.shown().p_control->parameters[static_cast<std::size_t>(index)];
}

control_update& update_of(engine* p_engine) noexcept {
    return *p_engine->played.shown().p_control->p_control_update;
}

const char* keep(engine* p_engine, std::string text) {
    p_engine->text = std::move(text);
    return p_engine->text.c_str();
}

} // namespace

engine* engine_create(std::uint32_t seed, float sampling_rate, std::uint32_t block) {
    const std::vector<float> silence(block);
    auto* const p_engine = new engine{.played{seed}, .outputs{silence, silence}};
    p_engine->played.set_sampling_rate(static_cast<double>(sampling_rate));
    for (const auto& p_keybed : p_engine->played.playing().p_organ->p_keybeds)
        p_engine->active_keys.push_back(p_keybed->p_key_list->active);
    return p_engine;
}

std::uint32_t engine_nb_parameters(engine* p_engine) {
    return p_engine->played.shown().p_control->nb_parameters;
}

float engine_get_parameter(engine* p_engine, int index) noexcept {
    return player_get_parameter(&p_engine->played.shown(), index);
}

void engine_set_parameter(engine* p_engine, int index, float value) noexcept {
    player_set_parameter(&p_engine->played.shown(), index, value);
}

bool engine_is_switch(engine* p_engine, int index) noexcept {
    return parameter_is_switch(parameter_of(p_engine, index));
}

std::uint32_t engine_controller(engine* p_engine, int index) noexcept {
    return parameter_of(p_engine, index).midi_cc.load(std::memory_order_relaxed);
}

std::uint32_t engine_channel(engine* p_engine, int index) noexcept {
    return parameter_of(p_engine, index).midi_channel.load(std::memory_order_relaxed);
}

void engine_bind(engine* p_engine, int index, std::uint32_t controller,
                 std::uint32_t channel) noexcept {
    parameter& bound = parameter_of(p_engine, index);
    bound.midi_cc.store(controller, std::memory_order_relaxed);
    bound.midi_channel.store(channel, std::memory_order_relaxed);
}

void engine_learn(engine* p_engine, int index) noexcept {
    control_update& update = update_of(p_engine);
    update.last_ui_control_changed_index.store(index, std::memory_order_relaxed);
    update.midi_learning.store(index >= 0 ? 1 : 0, std::memory_order_relaxed);
}

int engine_learning(engine* p_engine) noexcept {
    const control_update& update = update_of(p_engine);
    return update.midi_learning.load(std::memory_order_relaxed) > 0
               ? update.last_ui_control_changed_index.load(std::memory_order_relaxed)
               : -1;
}

const char* engine_parameter_name(engine* p_engine, int index) {
    return parameter_of(p_engine, index).name.c_str();
}

const char* engine_parameter_text(engine* p_engine, int index, float value) {
    return keep(p_engine, parameter_text(parameter_of(p_engine, index), value));
}

bool engine_receive(engine* p_engine, int status, int first, int second, int frame) noexcept {
    const char message[] = {static_cast<char>(status), static_cast<char>(first),
                            static_cast<char>(second)};
    return !player_receive_midi_event(&p_engine->played.playing(), message, frame).empty();
}

void engine_process(engine* p_engine, std::uint32_t nb_frames) noexcept {
    auto& [right, left] = p_engine->outputs;
    player_process(&p_engine->played.playing(), std::span(right).first(nb_frames),
                   std::span(left).first(nb_frames));
}

const float* engine_output(engine* p_engine, std::uint32_t channel) {
    return p_engine->outputs[channel].data();
}

bool engine_follow_keys(engine* p_engine) noexcept {
    bool has_changed = false;
    auto known = p_engine->active_keys.begin();
    for (const auto& p_keybed : p_engine->played.playing().p_organ->p_keybeds) {
        const auto& active = p_keybed->p_key_list->active;
        has_changed |= *known != active;
        std::ranges::copy(active, known->begin());
        ++known;
    }
    return has_changed;
}

const bool* engine_notes(engine* p_engine) {
    const player& playing = p_engine->played.playing();
    for (std::size_t note = 0; note < nb_midi_notes; ++note)
        p_engine->sounding[note] = player_sounds(&playing, static_cast<int>(note));
    return p_engine->sounding.data();
}

bool engine_is_resting(engine* p_engine) noexcept {
    return p_engine->played.playing().p_organ->is_resting;
}

void engine_panic(engine* p_engine) noexcept { player_panic(&p_engine->played.playing()); }

char* engine_text_room(engine* p_engine, std::uint32_t nb_bytes) {
    p_engine->text.assign(nb_bytes, '\0');
    return p_engine->text.data();
}

const char* engine_save(engine* p_engine) { return keep(p_engine, p_engine->played.save()); }

bool engine_load(engine* p_engine) { return p_engine->played.load(p_engine->text); }

bool engine_register(engine* p_engine) {
    player& shown = p_engine->played.shown();
    const auto read = registration_read(p_engine->text, *shown.p_control);
    if (!read)
        return false;
    for (const auto& [index, value] : read->settings)
        player_set_parameter(&shown, index, value);
    return true;
}

std::uint32_t engine_nb_registrations() { return factory_registrations.size(); }

const char* engine_registration_key(std::uint32_t index) {
    return factory_registrations[index].key;
}

const char* engine_registration_text(std::uint32_t index) {
    return factory_registrations[index].text;
}
