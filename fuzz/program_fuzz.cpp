// A program file, which an instrument with a program takes whole or not at all and plays with; and
// a bank file, of which there is no format.

#include "fuzz/fuzzed.h"
#include "fuzz/instrument.h"
#include "korvel/korvel.h"
#include "tests/temporary_folder.h"
#include "vst/organ.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t nb_bytes) {
    static const temporary_folder folder;
    const std::string file = folder / "in.fxp", saved = folder / "out.fxp";
    const std::string content(p_bytes, p_bytes + nb_bytes);
    file_write(file, content);

    organ* p_engine = korvel_create("Tindelwax");
    Organ effect([](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) { return VstIntPtr{}; },
                 1, static_cast<VstInt32>(p_engine->p_control->nb_parameters), p_engine);
    effect.ProgSave(saved.c_str());
    const std::string initial = file_content(saved);
    effect.ProgLoad(file.c_str());
    effect.ProgSave(saved.c_str());
    const std::string taken = file_content(saved);
    require(taken == initial || content.starts_with(taken));
    effect.ProgBankLoad(file.c_str());
    effect.ProgBankSave(file.c_str());
    require(file_content(file) == content);

    effect.setSampleRate(22050);
    event_list keys;
    for (std::uint8_t note = korvel_first_note; note < nb_midi_notes; ++note)
        keys.add_midi(message_make(message_note_on, 0, note, 100), note);
    effect.processEvents(keys.records());
    for (VstInt32 i = 0; i < effect.getAeffect()->numParams; ++i) {
        char text[16];
        effect.getParameterDisplay(i, text);
        require(effect.getParameter(i) >= 0); // all that is not finite is refused
    }
    play(effect.getAeffect(), 200);
    effect.storeCurrentProg();
    return 0;
}
