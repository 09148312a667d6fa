#include "vst/organ.h"

#include "korvel/korvel.h"
#include "organ/midi.h"
#include "vst/editor/editor.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr VstInt32 vendor_version = 1;
constexpr VstInt32 display_len = 8; ///< characters of a number's text

/// Bytes that hosts have for the texts handed out: what does not fit is cut.
constexpr std::size_t parameter_name_size = 11; ///< "BassChords" and its zero
constexpr std::size_t unit_display_size = 16;

constexpr float lowest_rate = 1000.0f;
constexpr float highest_rate = 1000000.0f;

void copy_text(char* dest, std::string_view text, std::size_t size) {
    if (!dest)
        return;
    const std::size_t len = text.copy(dest, size - 1);
    dest[len] = '\0';
}

/// Notes, and what silences them, have their place in time; everything else acts at once.
bool is_timed(const char* midi_data) {
    switch (midi_kind(midi_data)) {
    case midi_note_off:
    case midi_note_on:
        return true;
    case midi_control_change:
        return (midi_data[1] == midi_all_sound_off || midi_data[1] == midi_all_notes_off)
               && midi_data[2] == 0;
    default:
        return false;
    }
}

VstInt32 unique_id(const std::string& name) {
    unsigned id = 0;
    for (std::size_t i = 0; i < 4; ++i)
        id = id << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0u);
    return static_cast<VstInt32>(id);
}

/// Truncated, and within the integers.
int percent(float value) {
    return static_cast<int>(std::clamp(static_cast<double>(value) * 100, -2e9, 2e9));
}

} // namespace

Organ::Organ(audioMasterCallback host, VstInt32 nbPrograms, VstInt32 nbParams, organ* engine)
    : AudioEffectX(host, nbPrograms, nbParams),
      p_organ(engine),
      p_control(engine->p_control),
      p_control_update(p_control->p_control_update.get()) {
    setNumInputs(0);
    setNumOutputs(2);
    canProcessReplacing(true);
    canDoubleReplacing(false);
    isSynth(true);
    setUniqueID(unique_id(p_control->name));
    programsAreChunks(false);
    p_editor = new Editor(this, p_control);
    p_prog_bank = program_bank_create("DEFAULT PROG BANK",
                                      static_cast<unsigned>(std::max(nbPrograms, 0)), p_control);
    for (std::size_t j = 0; j < p_control->parameters.size(); ++j)
        Organ::setParameter(static_cast<VstInt32>(j), p_control->parameters[j]->default_value);
    AudioEffectX::resume();
}

/// The editor first: it looks at the registry.
Organ::~Organ() {
    delete editor;
    setEditor(nullptr);
    program_bank_free(p_prog_bank);
    korvel_free(p_organ);
    control_free(p_control);
}

void Organ::resume() { AudioEffectX::resume(); }

void Organ::setSampleRate(float rate) {
    if (!(rate >= lowest_rate && rate <= highest_rate))
        return;
    organ_set_sampling_rate(p_organ, static_cast<int>(rate));
    reservePieces();
}

void Organ::setBlockSize(VstInt32 nbFrames) {
    if (nbFrames < 1)
        return;
    reservePieces();
    organ_set_block_size(p_organ, std::min<int>(nbFrames, max_piece_frames));
}

/// A host may deliver more than it announced: the memory of a full piece is there from the start.
void Organ::reservePieces() { organ_set_block_size(p_organ, max_piece_frames); }

void Organ::processReplacing(float**, float** outputs, VstInt32 sampleFrames) {
    if (sampleFrames <= 0 || !outputs || !outputs[0] || !outputs[1])
        return;
    const auto nb_frames = static_cast<std::size_t>(sampleFrames);
    const std::span<float> out_r(outputs[0], nb_frames);
    const std::span<float> out_l(outputs[1], nb_frames);
    if (p_organ->sampling_rate == 0) {
        std::ranges::fill(out_r, 0.0f);
        std::ranges::fill(out_l, 0.0f);
        return;
    }

    auto waiting = notes.waiting();
    int frame = 0;
    for (std::size_t start = 0; start < nb_frames; start += max_piece_frames) {
        const std::size_t piece = std::min<std::size_t>(max_piece_frames, nb_frames - start);
        if (panicAsked.exchange(false, std::memory_order_relaxed)) {
            waiting = {};
            organ_panic(p_organ);
        }
        if (p_organ->block_size != static_cast<int>(piece))
            organ_set_block_size(p_organ, static_cast<int>(piece));
        const int piece_start = static_cast<int>(start);
        const int piece_end = piece_start + static_cast<int>(piece);
        for (; !waiting.empty(); waiting = waiting.subspan(1)) {
            frame = std::max(frame, std::min(waiting.front().frame, sampleFrames - 1));
            if (frame >= piece_end)
                break;
            organ_receive_midi_event(p_organ, waiting.front().midi_data, frame - piece_start);
        }
        organ_process(p_organ, out_r.subspan(start, piece), out_l.subspan(start, piece));
    }
    notes.clear();
}

VstInt32 Organ::processEvents(VstEvents* events) {
    midiNumEvents.store(0, std::memory_order_relaxed);
    if (!events)
        return 1;
    VstEvent* const* const list = events->events;
    for (VstInt32 i = 0; i < events->numEvents; ++i) {
        if (!list[i])
            continue;
        if (list[i]->type == kVstSysExType) {
            receiveSysex(*reinterpret_cast<const VstMidiSysexEvent*>(list[i]));
            sendVstEventsToHost(events);
        } else if (list[i]->type == kVstMidiType) {
            receiveMidi(*reinterpret_cast<const VstMidiEvent*>(list[i]));
        }
    }
    return 1;
}

/// Keeps the payload between the first byte and the last, as much of it as the buffer holds.
void Organ::receiveSysex(const VstMidiSysexEvent& event) {
    std::size_t nb_bytes = 0;
    if (event.sysexDump && event.dumpBytes > 2)
        nb_bytes =
            std::min(static_cast<std::size_t>(event.dumpBytes) - 2, sysex_buffer_in.size() - 1);
    if (nb_bytes > 0)
        std::memcpy(sysex_buffer_in.data(), event.sysexDump + 1, nb_bytes);
    sysex_buffer_in[nb_bytes] = '\0';
}

void Organ::receiveMidi(const VstMidiEvent& event) {
    const char* midi_data = event.midiData;
    midiNumEvents.fetch_add(1, std::memory_order_relaxed);
    if (is_timed(midi_data)) {
        queueNote({{midi_data[0], midi_data[1], midi_data[2]}, event.deltaFrames});
        return;
    }
    if (midi_kind(midi_data) == midi_program_change)
        setProgram(static_cast<unsigned char>(midi_data[1]));

    p_control_update->nb_parameter_updated = 0;
    organ_receive_midi_event(p_organ, midi_data, 0);
    for (int k = 0; k < p_control_update->nb_parameter_updated; ++k) {
        const auto position = static_cast<std::size_t>(k);
        setParameter(p_control_update->parameter_index[position],
                     p_control_update->parameter_value[position]);
    }
}

/// Nothing is dropped: what a full queue holds reaches the engine at the frame where it stands.
void Organ::queueNote(const queued_message& message) {
    if (notes.full()) {
        for (const queued_message& queued : notes.waiting())
            organ_receive_midi_event(p_organ, queued.midi_data, 0);
        notes.clear();
    }
    notes.push(message);
}

const parameter* Organ::findParameter(VstInt32 index) const {
    const auto position = static_cast<std::size_t>(static_cast<std::uint32_t>(index));
    return position < p_control->parameters.size() ? p_control->parameters[position].get()
                                                   : nullptr;
}

void Organ::setParameter(VstInt32 index, float value) {
    if (!std::isfinite(value))
        return;
    value = std::max(value, 0.0f);
    if (findParameter(index)) {
        control_set_parameter(p_control, index, value);
        p_control_update->last_ui_control_changed_index.store(index, std::memory_order_relaxed);
    }
    p_editor->setParameter(index, value); // the other indices are the panel's actions
}

float Organ::getParameter(VstInt32 index) {
    return findParameter(index) ? control_get_parameter(p_control, index) : 0.0f;
}

void Organ::getParameterDisplay(VstInt32 index, char* text) {
    const parameter* p_param = findParameter(index);
    if (!p_param || !text)
        return;
    const float value = control_get_parameter(p_control, index);
    if (p_param->unit == "bin")
        copy_text(text, value > 0.5f ? "ON" : "OFF", unit_display_size);
    else if (p_param->unit == "db")
        dB2string(value, text, display_len);
    else if (p_param->unit == "hz")
        std::snprintf(text, unit_display_size, "%f Hz", static_cast<double>(value));
    else if (p_param->unit == "%")
        std::snprintf(text, unit_display_size, "%d %%", percent(value));
    else
        float2string(value, text, display_len);
}

void Organ::getParameterName(VstInt32 index, char* text) {
    if (const parameter* p_param = findParameter(index))
        copy_text(text, p_param->name, parameter_name_size);
}

program* Organ::currentProgram() const {
    const auto current = static_cast<std::size_t>(curProgram);
    return current < p_prog_bank->programs.size() ? p_prog_bank->programs[current] : nullptr;
}

void Organ::setProgram(VstInt32 program) {
    if (program < 0 || program >= numPrograms)
        return;
    curProgram = program;
    const std::vector<float>& values = currentProgram()->parameter_value;
    for (std::size_t j = 0; j < values.size(); ++j)
        setParameter(static_cast<VstInt32>(j), values[j]);
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

void Organ::panic() { panicAsked.store(true, std::memory_order_relaxed); }

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

void Organ::ProgBankLoad(const char* filename) { bank_from_file(p_prog_bank, filename); }

void Organ::ProgBankSave(const char* filename) { bank_to_file(p_prog_bank, filename); }
