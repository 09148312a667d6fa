#include "plugin/plugin.h"

#include "failure/printable.h"
#include "platform/trial.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::chrono::seconds trial_limit{20};
// The published lengths are 8 to 64 bytes, and instruments write past them.
constexpr std::size_t text_capacity = 4096;

constexpr const char* next_step = "; choose another plug-in with --plugin FILE";

/// Without the blanks around it that some pad their texts with.
std::string tidy(const std::string& text) {
    constexpr const char* blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos)
        return "";
    return printable(text.substr(first, text.find_last_not_of(blanks) + 1 - first));
}

effect open_effect(const std::filesystem::path& file, command_host& host) {
    try {
        return {file, [&host](const host_call& call) { return host.answer(call); },
                effect::after_closing::stays_loaded};
    } catch (const failure& refusal) {
        throw failure{refusal.status, std::string{refusal.what()} + next_step};
    }
}

void resize_channels(std::vector<std::vector<float>>& channels, std::vector<float*>& pointers,
                     int nb_channels, int nb_frames) {
    channels.assign(static_cast<std::size_t>(nb_channels),
                    std::vector<float>(static_cast<std::size_t>(nb_frames)));
    pointers.clear();
    for (auto& channel : channels)
        pointers.push_back(channel.data());
}

} // namespace

plugin::plugin(const std::filesystem::path& file)
    : name_{file.string()},
      host_{.plugin_folder = std::filesystem::absolute(file).parent_path()},
      effect_{open_effect(file, host_)} {}

plugin::~plugin() { stop(); }

void plugin::fail(const std::string& what) const {
    throw failure{exit_failed, name_ + " " + what + next_step};
}

int plugin::nb_parameters() const { return record().numParams; }

int plugin::nb_channels() const { return std::min(record().numOutputs, 2); }

VstIntPtr plugin::ask(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return effect_.ask(opcode, index, value, ptr, opt);
}

std::string plugin::text(VstInt32 opcode, VstInt32 index) {
    std::array<char, text_capacity> buffer{};
    ask(opcode, index, 0, buffer.data());
    buffer.back() = 0;
    return tidy(buffer.data());
}

float plugin::parameter(int index) { return effect_.get(index); }

void plugin::set_parameter(int index, float value) { effect_.set(index, value); }

void plugin::prepare(double rate_hz, int block_frames) {
    host_.rate_hz = rate_hz;
    host_.block_frames = block_frames;
    host_.time.sampleRate = rate_hz;
    ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate_hz));
    ask(effSetBlockSize, 0, block_frames);
}

void plugin::start(command_host::activity for_what) {
    if (!record().processReplacing || !(record().flags & effFlagsCanReplacing))
        fail("cannot process audio in single precision");
    if (nb_channels() == 0)
        fail("has no audio output");
    resize_channels(inputs_, p_inputs_, record().numInputs, host_.block_frames);
    resize_channels(outputs_, p_outputs_, record().numOutputs, host_.block_frames);
    host_.does = for_what;
    ask(effMainsChanged, 0, 1);
    ask(effStartProcess);
    runs_ = true;
}

void plugin::stop() {
    if (!runs_)
        return;
    ask(effStopProcess);
    ask(effMainsChanged, 0, 0);
    runs_ = false;
    host_.does = command_host::activity::sets_up;
}

void plugin::send(event_list& events) { ask(effProcessEvents, 0, 0, events.records()); }

void plugin::process(int nb_frames) {
    record().processReplacing(effect_.record(), p_inputs_.data(), p_outputs_.data(), nb_frames);
}

std::span<const float> plugin::output(int channel) const {
    return outputs_[static_cast<std::size_t>(channel)];
}

void plugin_try(const std::filesystem::path& file, const std::function<void(plugin&)>& rehearse) {
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        throw failure{exit_misused, file.string() + " is missing" + next_step};
    const auto load_and_close = [&] {
        plugin loaded{file};
        rehearse(loaded);
    };
    const std::string complaint = trial_run(file.string(), load_and_close, trial_limit);
    if (!complaint.empty())
        throw failure{exit_failed, complaint + next_step};
}
