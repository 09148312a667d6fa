#include "vst/organ.h"

#include "midi/midi.h"
#include "player/parameter_text.h"
#include "vst/editor/editor.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr VstInt32 vendor_version = 1;

/// Bytes that hosts have for the texts handed out: what does not fit is cut.
constexpr std::size_t parameter_name_size = 11; ///< "BassChords" and its zero
constexpr std::size_t display_size = 16;

void copy_text(char* dest, std::string_view text, std::size_t size) {
    if (!dest)
        return;
    const std::size_t len = text.copy(dest, size - 1);
    dest[len] = '\0';
}

VstInt32 unique_id(const std::string& name) {
    unsigned id = 0;
    for (std::size_t i = 0; i < 4; ++i)
        id = id << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0u);
    return static_cast<VstInt32>(id);
}

} // namespace

Organ::Organ(audioMasterCallback host, VstInt32 nbPrograms, VstInt32 nbParams, organ* engine)
    : AudioEffectX(host, nbPrograms, nbParams),
      p_player(player_create(engine)),
      p_organ(engine),
      p_control(engine->p_control) {
    setNumInputs(0);
    setNumOutputs(2);
    canProcessReplacing(true);
    canDoubleReplacing(false);
    isSynth(true);
    setUniqueID(unique_id(p_control->name));
    programsAreChunks(false);
    p_editor = new Editor(this, p_control);
    p_prog_bank.reset(program_bank_create(
        "DEFAULT PROG BANK", static_cast<unsigned>(std::max(nbPrograms, 0)), p_control));
    for (std::size_t j = 0; j < p_control->parameters.size(); ++j)
        Organ::setParameter(static_cast<VstInt32>(j), p_control->parameters[j]->default_value);
    AudioEffectX::resume();
}

/// The editor first: it looks at the registry.
Organ::~Organ() { editor.reset(); }

void Organ::setSampleRate(float rate) { player_set_sampling_rate(p_player.get(), rate); }

void Organ::setBlockSize(VstInt32 nbFrames) { player_set_block_size(p_player.get(), nbFrames); }

void Organ::processReplacing(float**, float** outputs, VstInt32 sampleFrames) noexcept {
    if (sampleFrames <= 0 || !outputs || !outputs[0] || !outputs[1])
        return;
    const auto nb_frames = static_cast<std::size_t>(sampleFrames);
    player_process(p_player.get(), {outputs[0], nb_frames}, {outputs[1], nb_frames});
}

VstInt32 Organ::processEvents(VstEvents* events) noexcept {
    midiNumEvents.store(0, std::memory_order_relaxed);
    if (!events)
        return 1;
    VstEvent* const* const list = events->events;
    for (VstInt32 i = 0; i < events->numEvents; ++i) {
        if (!list[i])
            continue;
        if (list[i]->type == kVstSysExType) {
            receiveSysex(*reinterpret_cast<const VstMidiSysexEvent*>(list[i]));
            NONBLOCKING_UNCHECKED_BEGIN // the host's own function, which it lends for this
                sendVstEventsToHost(events);
            NONBLOCKING_UNCHECKED_END
        } else if (list[i]->type == kVstMidiType) {
            receiveMidi(*reinterpret_cast<const VstMidiEvent*>(list[i]));
        }
    }
    return 1;
}

/// Keeps the payload between the first byte and the last, as much of it as the buffer holds.
void Organ::receiveSysex(const VstMidiSysexEvent& event) noexcept {
    nb_sysex_bytes = 0;
    if (event.sysexDump && event.dumpBytes > 2)
        nb_sysex_bytes =
            std::min(static_cast<std::size_t>(event.dumpBytes) - 2, sysex_buffer_in.size() - 1);
    if (nb_sysex_bytes > 0)
        std::memcpy(sysex_buffer_in.data(), event.sysexDump + 1, nb_sysex_bytes);
    sysex_buffer_in[nb_sysex_bytes] = '\0';
}

void Organ::receiveMidi(const VstMidiEvent& event) noexcept {
    midiNumEvents.fetch_add(1, std::memory_order_relaxed);
    if (midi_kind(event.midiData) == midi_program_change)
        setProgram(static_cast<unsigned char>(event.midiData[1]));

    for (const int index :
         player_receive_midi_event(p_player.get(), event.midiData, event.deltaFrames))
        p_editor->showParameter(index, getParameter(index));
}

void Organ::setParameter(VstInt32 index, float value) {
    if (player_find_parameter(p_player.get(), index))
        return moveParameter(index, value);
    if (const auto counted = player_set_parameter(p_player.get(), index, value))
        p_editor->setParameter(index, *counted); // an action of the panel's
}

void Organ::moveParameter(VstInt32 index, float value) noexcept {
    if (const auto counted = player_set_parameter(p_player.get(), index, value))
        p_editor->showParameter(index, *counted);
}

float Organ::getParameter(VstInt32 index) noexcept {
    return player_get_parameter(p_player.get(), index);
}

void Organ::getParameterDisplay(VstInt32 index, char* text) {
    if (const parameter* p_param = player_find_parameter(p_player.get(), index))
        copy_text(text, parameter_text(*p_param, getParameter(index)), display_size);
}

void Organ::getParameterName(VstInt32 index, char* text) {
    if (const parameter* p_param = player_find_parameter(p_player.get(), index))
        copy_text(text, p_param->name, parameter_name_size);
}

program* Organ::currentProgram() const noexcept {
    const auto current = static_cast<std::size_t>(curProgram);
    return current < p_prog_bank->programs.size() ? p_prog_bank->programs[current].get() : nullptr;
}

void Organ::setProgram(VstInt32 program) noexcept {
    if (program < 0 || program >= numPrograms)
        return;
    curProgram = program;
    const std::vector<float>& values = currentProgram()->parameter_value;
    for (std::size_t j = 0; j < values.size(); ++j)
        moveParameter(static_cast<VstInt32>(j), values[j]);
    p_editor->setProgram(program);
}

void Organ::setProgramName(char* name) {
    if (name)
        copy_text(p_control->current_program_name.data(), name,
                  p_control->current_program_name.size());
}

void Organ::getProgramName(char* name) {
    copy_text(name, p_control->current_program_name.data(), kVstMaxProgNameLen);
}

bool Organ::getProgramNameIndexed(VstInt32, VstInt32 index, char* text) {
    const auto position = static_cast<std::size_t>(static_cast<std::uint32_t>(index));
    if (position >= p_prog_bank->programs.size())
        return false;
    copy_text(text, p_prog_bank->programs[position]->name, kVstMaxProgNameLen);
    return true;
}

bool Organ::getEffectName(char* name) {
    copy_text(name, p_control->name, kVstMaxEffectNameLen);
    return true;
}

bool Organ::getVendorString(char* text) {
    copy_text(text, "Quenmar", kVstMaxVendorStrLen);
    return true;
}

bool Organ::getProductString(char* text) {
    copy_text(text, p_control->name, kVstMaxProductStrLen);
    return true;
}

VstInt32 Organ::getVendorVersion() { return vendor_version; }

VstIntPtr Organ::vendorSpecific(VstInt32 index, VstIntPtr value, void*, float opt) {
    const bool tells_scale = index == kEditorScaleIndex && value == kEditorScaleValue;
    return tells_scale && p_editor->setScale(opt);
}

VstInt32 Organ::canDo(char* text) {
    if (!text)
        return 0;
    const std::string_view feature(text);
    return feature == "receiveVstEvents" || feature == "receiveVstMidiEvent"
           || feature == "receiveVstTimeInfo";
}

VstInt32 Organ::getPlugCategory() { return kPlugCategSynth; }

VstInt32 Organ::getNumMidiInputChannels() { return 1; }

VstInt32 Organ::getNumMidiOutputChannels() { return 1; }

void Organ::setOutputMode(int mode) { organ_set_output_mode(p_organ, mode); }

void Organ::panic() { player_panic(p_player.get()); }

void Organ::storeCurrentProg() {
    if (program* p_prog = currentProgram())
        program_from_control(p_prog, p_control);
}

void Organ::ProgLoad(const char* filename) {
    if (program* p_prog = currentProgram()) {
        program_from_file(p_prog, filename);
        setProgram(curProgram);
    }
}

void Organ::ProgSave(const char* filename) {
    if (const program* p_prog = currentProgram())
        program_to_file(p_prog, filename);
}

void Organ::ProgBankLoad(const char* filename) { bank_from_file(p_prog_bank.get(), filename); }

void Organ::ProgBankSave(const char* filename) { bank_to_file(p_prog_bank.get(), filename); }
