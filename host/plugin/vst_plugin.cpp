#include "plugin/vst_plugin.h"

#include "failure/printable.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

// The published lengths are 8 to 64 bytes, and instruments write past them.
constexpr std::size_t text_capacity = 4096;

/// Without the blanks around it that some pad their texts with.
std::string tidy(const std::string& text) {
    constexpr const char* blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos)
        return "";
    return printable(text.substr(first, text.find_last_not_of(blanks) + 1 - first));
}

/// The id's four characters.
std::string id_characters(VstInt32 id) {
    std::string characters;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto c = static_cast<char>(id >> shift & 0xFF);
        characters += c >= ' ' && c <= '~' ? c : '.';
    }
    return characters;
}

std::string id_text(VstInt32 id) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), " (0x%08X)", static_cast<unsigned>(id));
    return "'" + id_characters(id) + "'" + text.data();
}

std::string category_text(VstIntPtr category) {
    constexpr std::array names{"unknown",     "effect",          "synthesizer",
                               "analysis",    "mastering",       "spatial effect",
                               "room effect", "surround effect", "restoration",
                               "offline",     "set of plug-ins", "generator"};
    const auto index = static_cast<std::size_t>(category);
    return index < names.size() ? names[index] : "number " + std::to_string(category);
}

std::string flags_text(VstInt32 flags) {
    constexpr std::array<std::pair<VstInt32, const char*>, 6> names{
        {{effFlagsHasEditor, "editor"},
         {effFlagsCanReplacing, "single precision"},
         {effFlagsCanDoubleReplacing, "double precision"},
         {effFlagsProgramChunks, "programs as chunks"},
         {effFlagsIsSynth, "instrument"},
         {effFlagsNoSoundInStop, "silent when stopped"}}};
    std::string text;
    for (const auto& [flag, name] : names)
        if (flags & flag)
            text += (text.empty() ? "" : ", ") + std::string{name};
    return text.empty() ? "none" : text;
}

} // namespace

vst_plugin::vst_plugin(const std::filesystem::path& file, library::in_the_end then,
                       const call_listener& heard_by)
    : plugin{file},
      host_{.plugin_folder = std::filesystem::absolute(file).parent_path().string()},
      effect_{file,
              [this, heard_by](const host_call& call) {
                  if (heard_by)
                      heard_by(call);
                  return host_.answer(call);
              },
              then} {}

vst_plugin::~vst_plugin() { stop(); }

VstIntPtr vst_plugin::ask(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return effect_.ask(opcode, index, value, ptr, opt);
}

std::string vst_plugin::text(VstInt32 opcode, VstInt32 index) {
    std::array<char, text_capacity> buffer{};
    ask(opcode, index, 0, buffer.data());
    buffer.back() = 0;
    return tidy(buffer.data());
}

std::string vst_plugin::id() { return id_characters(record().uniqueID); }

std::vector<plugin_fact> vst_plugin::facts() {
    const auto number = [](auto value) { return std::to_string(value); };
    return {{"product", text(effGetProductString)},
            {"vendor", text(effGetVendorString)},
            {"version", number(record().version) + "; the vendor's "
                            + number(ask(effGetVendorVersion)) + "; interface "
                            + number(ask(effGetVstVersion))},
            {"id", id_text(record().uniqueID)},
            {"category", category_text(ask(effGetPlugCategory))},
            {"channels", number(record().numInputs) + " in, " + number(record().numOutputs)
                             + " out; MIDI " + number(ask(effGetNumMidiInputChannels)) + " in, "
                             + number(ask(effGetNumMidiOutputChannels)) + " out"},
            {"flags", flags_text(record().flags)},
            {"programs", number(std::max(record().numPrograms, 0))},
            {"parameters", number(nb_parameters())}};
}

std::string vst_plugin::parameter_text(int index) {
    const std::string label = text(effGetParamLabel, index);
    return text(effGetParamDisplay, index) + (label.empty() ? "" : " ") + label;
}

std::string vst_plugin::why_silent() const {
    if (!record().processReplacing || !(record().flags & effFlagsCanReplacing))
        return "cannot process audio in single precision";
    return plugin::why_silent();
}

void vst_plugin::set_up() {
    host_.rate_hz = rate_hz_;
    host_.block_frames = block_frames_;
    host_.time.sampleRate = rate_hz_;
    ask(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate_hz_));
    ask(effSetBlockSize, 0, block_frames_);
}

void vst_plugin::resume(host_activity for_what) {
    host_.does = for_what;
    ask(effMainsChanged, 0, 1);
    ask(effStartProcess);
}

void vst_plugin::suspend() {
    host_.does = host_activity::sets_up;
    ask(effStopProcess);
    ask(effMainsChanged, 0, 0);
}

void vst_plugin::send(event_list& events) { ask(effProcessEvents, 0, 0, events.records()); }

void vst_plugin::process(channel_memory inputs, channel_memory outputs, int nb_frames) {
    record().processReplacing(effect_.record(), const_cast<float**>(inputs.data()),
                              const_cast<float**>(outputs.data()), nb_frames);
}

std::optional<std::string> vst_plugin::save() {
    if (!(record().flags & effFlagsProgramChunks))
        return {};
    void* bytes = nullptr;
    const VstIntPtr nb_bytes = ask(effGetChunk, 0, 0, &bytes);
    if (nb_bytes <= 0 || !bytes)
        return "";
    return std::string{static_cast<const char*>(bytes), static_cast<std::size_t>(nb_bytes)};
}

/// What is taken of it, it does not say.
bool vst_plugin::load(std::string_view state) {
    ask(effSetChunk, 0, static_cast<VstIntPtr>(state.size()), const_cast<char*>(state.data()));
    return true;
}

bool vst_plugin::has_editor() const { return record().flags & effFlagsHasEditor; }

editor_extent vst_plugin::editor_size() {
    ERect* p_rect = nullptr;
    ask(effEditGetRect, 0, 0, &p_rect);
    if (!p_rect)
        return {};
    return {p_rect->right - p_rect->left, p_rect->bottom - p_rect->top};
}
