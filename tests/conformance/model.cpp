#include "conformance/model.h"

#include "plain/korvel.h"

#include <algorithm>

namespace {

constexpr int piece = 64;

organ* create(const trial& running) {
    running.plant_seed();
    return plain_korvel_create("Tindelwax");
}

} // namespace

model::model(const trial& running, const set_up& wanted) : engine(create(running)) {
    registry.reset(engine->p_control);
    organ_set_sampling_rate(engine.get(), wanted.rate);
    organ_set_block_size(engine.get(), piece);
    for (const auto& [index, value] : wanted.parameters)
        set(index, value);
}

model::~model() = default;

void model::set(VstInt32 index, float value) {
    control_set_parameter(registry.get(), index, value);
}

recording model::render(const score& played, long nb_frames) {
    const auto nb_samples = static_cast<std::size_t>(nb_frames);
    recording sound{.right = std::vector<float>(nb_samples),
                    .left = std::vector<float>(nb_samples)};
    auto next = played.begin();
    for (long start = 0; start < nb_frames; start += piece) {
        const auto first = static_cast<std::size_t>(start);
        const std::size_t length = std::min<std::size_t>(piece, nb_samples - first);
        organ_set_block_size(engine.get(), static_cast<int>(length));
        for (; next != played.end() && next->frame < start + piece; ++next) {
            const auto bytes = message_of(*next);
            organ_receive_midi_event(engine.get(), reinterpret_cast<const char*>(bytes.data()),
                                     static_cast<int>(next->frame - start));
        }
        organ_process(engine.get(), std::span(sound.right).subspan(first, length),
                      std::span(sound.left).subspan(first, length));
    }
    return sound;
}
