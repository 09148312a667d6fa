#include "conformance/instrument.h"

#include <algorithm>
#include <cmath>

namespace {

const std::filesystem::path& seeded_file(const trial& running) {
    running.plant_seed();
    return running.plugin_file;
}

} // namespace

instrument::instrument(trial& running_, host_answers answers)
    : running(running_),
      its_host{std::move(answers)},
      loaded(seeded_file(running), [this](const host_call& call) { return its_host.take(call); }) {
    running.frame = 0;
}

instrument::instrument(trial& running_, const set_up& wanted) : instrument(running_) {
    prepare(wanted);
}

void instrument::send(const midi& message) {
    event_list events;
    events.add_midi(message_of(message), 0);
    send(events);
}

void instrument::prepare(const set_up& wanted) {
    running.rate = wanted.rate;
    blocks = wanted.blocks;
    next_block = 0;
    ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(wanted.rate));
    ask(effSetBlockSize, 0, *std::ranges::max_element(blocks));
    for (const auto& [index, value] : wanted.parameters)
        set(index, value);
    ask(effMainsChanged, 0, 1);
}

VstIntPtr instrument::ask(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return loaded.ask(opcode, index, value, ptr, opt);
}

std::string instrument::text(VstInt32 opcode, std::size_t nb_bytes, VstInt32 index) {
    const guarded_memory memory(nb_bytes);
    ask(opcode, index, 0, memory.data());
    running.expect(memory.front_holds(), "bytes in front of the text change");
    const auto text = memory.text();
    running.expect(text.has_value(), "a text without an end");
    return std::string(*text);
}

recording instrument::render(const score& played, long nb_frames) {
    recording sound;
    std::size_t next = 0;
    for (long start = 0; start < nb_frames;) {
        const int length =
            static_cast<int>(std::min<long>(blocks[next_block % blocks.size()], nb_frames - start));
        ++next_block;
        send_until(played, next, start, length);
        process(sound, length);
        start += length;
    }
    return sound;
}

void instrument::send_until(const score& played, std::size_t& next, long start, int nb_frames) {
    event_list events;
    for (; next < played.size() && played[next].frame < start + nb_frames; ++next)
        events.add_midi(message_of(played[next]),
                        static_cast<VstInt32>(played[next].frame - start));
    if (!events.is_empty())
        send(events);
}

void instrument::process(recording& sound, int nb_frames) {
    running.block = nb_frames;
    const std::size_t start = sound.right.size();
    const std::size_t end = start + static_cast<std::size_t>(nb_frames);
    // What is not written shows as not a number.
    sound.right.resize(end, std::nanf(""));
    sound.left.resize(end, std::nanf(""));
    std::array outputs{sound.right.data() + start, sound.left.data() + start};
    record()->processReplacing(record(), nullptr, outputs.data(), nb_frames);
    running.frame += nb_frames;
}
