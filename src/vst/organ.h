#pragma once
/// The plug-in that a VST 2.4 host talks to: it adapts the host's calls to the player.
///
/// processEvents and processReplacing are [audio]; rate and block size are [setup]; parameters may
/// be set and read from [any] thread; the rest runs on the threads of the host and its user.

#include "player/player.h"
#include "program/program.h"
#include "vst/audioeffectx.h"

#include <array>
#include <atomic>
#include <memory>
#include <string_view>

class Editor;

class Organ final : public AudioEffectX {
public:
    /// Takes the engine and its registry into its ownership.
    Organ(audioMasterCallback host, VstInt32 nbPrograms, VstInt32 nbParams, organ* engine);
    ~Organ() override;

    void setSampleRate(float rate) override;
    void setBlockSize(VstInt32 nbFrames) override;
    void processReplacing(float** inputs, float** outputs,
                          VstInt32 sampleFrames) noexcept NONBLOCKING override;
    VstInt32 processEvents(VstEvents* events) noexcept NONBLOCKING override;

    void setParameter(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) noexcept NONBLOCKING override;
    void getParameterLabel(VstInt32, char*) override {} ///< leaves the host's text as it is
    void getParameterDisplay(VstInt32 index, char* text) override;
    void getParameterName(VstInt32 index, char* text) override;

    void setProgram(VstInt32 program) noexcept NONBLOCKING override; ///< [any]
    void setProgramName(char* name) override;
    void getProgramName(char* name) override;
    bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;

    bool getEffectName(char* name) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    VstInt32 getVendorVersion() override;
    VstIntPtr vendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt) override;
    VstInt32 canDo(char* text) override;
    VstInt32 getPlugCategory() override;
    VstInt32 getNumMidiInputChannels() override;
    VstInt32 getNumMidiOutputChannels() override;

    void setOutputMode(int mode);
    void panic(); ///< silences what was played so far [any]

    /// The current program's and the bank's; nothing happens while the bank has no program. Not
    /// side by side with a program change on another thread.
    void storeCurrentProg();
    void ProgLoad(const char* filename);
    void ProgSave(const char* filename);
    void ProgBankLoad(const char* filename);
    void ProgBankSave(const char* filename);

    /// The latest SysEx message without its first byte and its last, as much as fits. [audio]
    [[nodiscard]] std::string_view sysexPayload() const {
        return {sysex_buffer_in.data(), nb_sysex_bytes};
    }

    /// Channel messages of the latest processEvents: a sign of MIDI activity, for whoever shows it
    /// to clear.
    std::atomic<VstInt32> midiNumEvents = 0;

private:
    [[nodiscard]] program* currentProgram() const noexcept NONBLOCKING;
    void receiveSysex(const VstMidiSysexEvent& event) noexcept NONBLOCKING;
    void receiveMidi(const VstMidiEvent& event) noexcept NONBLOCKING;
    void moveParameter(VstInt32 index, float value) noexcept NONBLOCKING; ///< and show it [any]

    std::unique_ptr<player> p_player;
    organ* p_organ;
    control* p_control;
    std::unique_ptr<program_bank> p_prog_bank;
    Editor* p_editor;                         ///< the base's editor, by its own type
    std::array<char, 4096> sysex_buffer_in{}; ///< the latest payload and a zero byte
    std::size_t nb_sysex_bytes = 0;           ///< without that
};
