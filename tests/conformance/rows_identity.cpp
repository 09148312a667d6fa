/// What the instrument says of itself.

#include "conformance/instrument.h"

#include <algorithm>
#include <map>

namespace {

using Identity = Row;

TEST_F(Identity, Record) {
    const instrument asked(running);
    const AEffect& effect = *asked.record();
    const struct {
        const char* field;
        long long value;
        long long wanted;
    } fields[]{{"magic", effect.magic, kEffectMagic},
               {"numPrograms", effect.numPrograms, 0},
               {"numParams", effect.numParams, nb_parameters},
               {"numInputs", effect.numInputs, 0},
               {"numOutputs", effect.numOutputs, 2},
               {"flags", effect.flags, effFlagsHasEditor | effFlagsCanReplacing | effFlagsIsSynth},
               {"resvd1", effect.resvd1, 0},
               {"resvd2", effect.resvd2, 0},
               {"initialDelay", effect.initialDelay, 0},
               {"__realQualitiesDeprecated", effect.__realQualitiesDeprecated, 0},
               {"__offQualitiesDeprecated", effect.__offQualitiesDeprecated, 0},
               {"uniqueID", effect.uniqueID, 'T' << 24 | 'i' << 16 | 'n' << 8 | 'd'},
               {"version", effect.version, 1}};
    for (const auto& [field, value, wanted] : fields)
        running.expect(value == wanted, std::string(field) + " is " + std::to_string(value)
                                            + ", wanted " + std::to_string(wanted));
    running.expect(effect.__ioRatioDeprecated == 1.0f, "__ioRatioDeprecated is not 1");
    running.expect(std::ranges::all_of(effect.future, [](char byte) { return byte == 0; }),
                   "the future bytes are not 0");
}

TEST_F(Identity, Texts) {
    instrument asked(running);
    const struct {
        VstInt32 opcode;
        std::size_t nb_bytes;
        const char* wanted;
    } cases[]{{effGetEffectName, kVstMaxEffectNameLen, "Tindelwax"},
              {effGetVendorString, kVstMaxVendorStrLen, "Quenmar"},
              {effGetProductString, kVstMaxProductStrLen, "Tindelwax"}};
    for (const auto& [opcode, nb_bytes, wanted] : cases) {
        const std::string text = asked.text(opcode, nb_bytes);
        running.expect(text == wanted, "opcode " + std::to_string(opcode) + " gives \"" + text
                                           + "\", wanted \"" + wanted + "\"");
    }
}

TEST_F(Identity, CanDo) {
    instrument asked(running);
    const std::pair<std::string, VstIntPtr> cases[]{{"receiveVstEvents", 1},
                                                    {"receiveVstMidiEvent", 1},
                                                    {"receiveVstTimeInfo", 1},
                                                    {"sendVstEvents", 0},
                                                    {"sendVstMidiEvent", 0},
                                                    {"receiveVstMidiEvents", 0},
                                                    {"receiveVstMidiEven", 0},
                                                    {"RECEIVEVSTEVENTS", 0},
                                                    {" receiveVstEvents", 0},
                                                    {"offline", 0},
                                                    {"", 0},
                                                    {std::string(70000, 'r'), 0}};
    for (const auto& [feature, wanted] : cases) {
        const guarded_memory text{std::string_view(feature)};
        const VstIntPtr answer = asked.ask(effCanDo, 0, 0, text.data());
        running.expect(answer == wanted, "\"" + feature.substr(0, 30) + "\" gets "
                                             + std::to_string(answer) + ", wanted "
                                             + std::to_string(wanted));
    }
}

/// Every opcode's answer to a host that asks with nothing in its hands. The rest answers 0.
TEST_F(Identity, Answers) {
    const std::map<VstInt32, VstIntPtr> wanted{{__effIdentifyDeprecated, kEffectIdentify},
                                               {effProcessEvents, 1},
                                               {effCanBeAutomated, 1},
                                               {effGetPlugCategory, kPlugCategSynth},
                                               {effGetEffectName, 1},
                                               {effGetVendorString, 1},
                                               {effGetProductString, 1},
                                               {effGetVendorVersion, 1},
                                               {effGetVstVersion, kVstVersion},
                                               {effEditKeyDown, 1},
                                               {effSetEditKnobMode, 1},
                                               {effGetCurrentMidiProgram, -1},
                                               {effGetNumMidiInputChannels, 1},
                                               {effGetNumMidiOutputChannels, 1}};
    instrument asked(running, set_up{});
    for (VstInt32 opcode = -10; opcode <= 200; ++opcode) {
        if (opcode == effClose)
            continue;
        const auto found = wanted.find(opcode);
        const VstIntPtr answer = asked.ask(opcode);
        running.expect(answer == (found == wanted.end() ? 0 : found->second),
                       "opcode " + std::to_string(opcode) + " answers " + std::to_string(answer));
    }
    running.expect(asked.ask(effSetTotalSampleToProcess, 0, 77) == 77, "a length is not echoed");
}

std::vector<float> play(trial& running, unsigned seed) {
    running.seed = seed;
    instrument playing(running, {.parameters = {{vibrato, 1.0f}}});
    return playing.render({note_on(0, 60), note_on(700, 28), note_off(9000, 60)}, 24000).right;
}

TEST_F(Identity, OneSeedGivesOneSound) {
    const std::vector<float> first = play(running, 1);
    running.expect(play(running, 1) == first, "one seed gives two sounds");
    running.expect(play(running, 2) != first, "two seeds give one sound");
}

} // namespace
