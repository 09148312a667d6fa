#pragma once
/// The plug-in that a VST 2.4 host talks to: it adapts the host's calls to the engine.
///
/// The engine is fed in pieces of at most 64 frames, whatever the host announces or delivers: the
/// gain curves stay in the first-level cache, what happens at a block's edge is heard within 1.5
/// ms, and no length that a host asks for can allocate. Notes wait in a queue until the host asks
/// for their block and its length is known; controllers act as they come.
///
/// processEvents and processReplacing are [audio]; rate and block size are [setup]; parameters may
/// be set and read from [any] thread; the rest runs on the threads of the host and its user.

#include "control/control.h"
#include "organ/organ.h"
#include "program/program.h"
#include "vst/audioeffectx.h"
#include "vst/note_queue.h"

#include <array>
#include <atomic>

class Editor;

class Organ final : public AudioEffectX {
public:
    static constexpr int max_piece_frames = 64;

    /// Takes the engine and its registry into its ownership.
    Organ(audioMasterCallback host, VstInt32 nbPrograms, VstInt32 nbParams, organ* engine);
    ~Organ() override;

    void resume() override;
    void setSampleRate(float rate) override;
    void setBlockSize(VstInt32 nbFrames) override;
    void processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) override;
    VstInt32 processEvents(VstEvents* events) override;

    void setParameter(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) override;
    void getParameterLabel(VstInt32, char*) override {} ///< leaves the host's text as it is
    void getParameterDisplay(VstInt32 index, char* text) override;
    void getParameterName(VstInt32 index, char* text) override;

    void setProgram(VstInt32 program) override;
    void setProgramName(char* name) override;
    void getProgramName(char* name) override;
    bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;

    bool getEffectName(char* name) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    VstInt32 getVendorVersion() override;
    VstInt32 canDo(char* text) override;
    VstInt32 getPlugCategory() override;
    VstInt32 getNumMidiInputChannels() override;
    VstInt32 getNumMidiOutputChannels() override;

    void setOutputMode(int mode);
    void panic(); ///< silences every key with the next piece [any]

    /// The current program's and the bank's; nothing happens while the bank has no program. Not
    /// side by side with a program change on another thread.
    void storeCurrentProg();
    void ProgLoad(const char* filename);
    void ProgSave(const char* filename);
    void ProgBankLoad(const char* filename);
    void ProgBankSave(const char* filename);

    /// Channel messages of the latest processEvents: a sign of MIDI activity, for whoever shows it
    /// to clear.
    std::atomic<VstInt32> midiNumEvents = 0;

private:
    [[nodiscard]] const parameter* findParameter(VstInt32 index) const;
    [[nodiscard]] program* currentProgram() const;
    void receiveSysex(const VstMidiSysexEvent& event);
    void receiveMidi(const VstMidiEvent& event);
    void queueNote(const queued_message& message);
    void reservePieces();

    organ* p_organ;
    control* p_control;
    control_update* p_control_update;
    Editor* p_editor; ///< the base's editor, by its own type
    program_bank* p_prog_bank;
    NoteQueue notes{};
    std::atomic<bool> panicAsked = false;
    std::array<char, 4096> sysex_buffer_in{}; ///< the latest payload and a zero byte
};
