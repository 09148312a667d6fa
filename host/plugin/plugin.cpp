#include "plugin/plugin.h"

#include "platform/trial.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::chrono::seconds trial_limit{20};
// A record that says more is no record.
constexpr int max_channels = 1024;
constexpr int max_parameters = 65536;

// The published lengths are 8 to 64 bytes, and instruments write past them.
constexpr std::size_t text_capacity = 4096;

[[noreturn]] void fail(const std::filesystem::path& file, const std::string& what) {
    throw failure{exit_failed, file.string() + " " + what};
}

std::string tidy(std::string text) {
    const auto is_control = [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; };
    std::replace_if(text.begin(), text.end(), is_control, ' ');
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
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
    : library_{file}, state_{.plugin_folder = std::filesystem::absolute(file).parent_path()} {
    if (!library_.error.empty())
        fail(file, "is no plug-in: " + library_.error);
    host_callback_serve(&state_);
    try {
        create(file);
    } catch (...) {
        host_callback_serve(nullptr);
        throw;
    }
    ask(effOpen);
}

void plugin::create(const std::filesystem::path& file) {
    void* address = library_.find("main");
    if (!address)
        address = library_.find("VSTPluginMain");
    if (!address)
        fail(file, "is no plug-in: it exports neither main nor VSTPluginMain");

    p_effect_ = reinterpret_cast<VstPluginMainProc>(address)(host_callback);
    if (!p_effect_)
        fail(file, "refuses to start: its entry point answers nothing");
    const AEffect& effect = *p_effect_;
    if (effect.magic != kEffectMagic || !effect.dispatcher || !effect.setParameter
        || !effect.getParameter)
        fail(file, "is no plug-in: its entry point answers something else");
    if (effect.numInputs < 0 || effect.numInputs > max_channels || effect.numOutputs < 0
        || effect.numOutputs > max_channels)
        fail(file, "claims an impossible number of channels");
    if (effect.numParams < 0 || effect.numParams > max_parameters)
        fail(file, "claims an impossible number of parameters");
}

plugin::~plugin() {
    stop();
    ask(effClose);
    host_callback_serve(nullptr);
}

int plugin::nb_parameters() const { return p_effect_->numParams; }

int plugin::nb_channels() const { return std::min(p_effect_->numOutputs, 2); }

VstIntPtr plugin::ask(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return p_effect_->dispatcher(p_effect_, opcode, index, value, ptr, opt);
}

std::string plugin::text(VstInt32 opcode, VstInt32 index) {
    std::array<char, text_capacity> buffer{};
    ask(opcode, index, 0, buffer.data());
    buffer.back() = 0;
    return tidy(buffer.data());
}

float plugin::parameter(int index) { return p_effect_->getParameter(p_effect_, index); }

void plugin::set_parameter(int index, float value) {
    p_effect_->setParameter(p_effect_, index, value);
}

void plugin::prepare(double rate_hz, int block_frames) {
    state_.rate_hz = rate_hz;
    state_.block_frames = block_frames;
    state_.time.sampleRate = rate_hz;
    ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate_hz));
    ask(effSetBlockSize, 0, block_frames);
}

void plugin::start() {
    if (!p_effect_->processReplacing || !(p_effect_->flags & effFlagsCanReplacing))
        throw failure{exit_failed, "the plug-in cannot process audio in single precision"};
    if (nb_channels() == 0)
        throw failure{exit_failed, "the plug-in has no audio output"};
    resize_channels(inputs_, p_inputs_, p_effect_->numInputs, state_.block_frames);
    resize_channels(outputs_, p_outputs_, p_effect_->numOutputs, state_.block_frames);
    state_.renders = true;
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
    state_.renders = false;
}

void plugin::send(event_list& events) { ask(effProcessEvents, 0, 0, events.records()); }

void plugin::process() {
    p_effect_->processReplacing(p_effect_, p_inputs_.data(), p_outputs_.data(),
                                state_.block_frames);
}

std::span<const float> plugin::output(int channel) const {
    return outputs_[static_cast<std::size_t>(channel)];
}

void plugin_try(const std::filesystem::path& file, const std::function<void(plugin&)>& rehearse) {
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        fail(file, "is missing; name the plug-in's file with --plugin FILE");
    const auto load_and_close = [&] {
        plugin loaded{file};
        rehearse(loaded);
    };
    const std::string complaint = trial_run(file.string(), load_and_close, trial_limit);
    if (!complaint.empty())
        throw failure{exit_failed, complaint + "; choose another with --plugin FILE"};
}
