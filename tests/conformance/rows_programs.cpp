/// Programs, of which there are none, their names, and chunks, which are not exchanged.

#include "conformance/instrument.h"

#include <array>

namespace {

using Programs = Row;

constexpr std::array touched{0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f, 0.9f, 1.0f};

void touch(instrument& asked) {
    for (VstInt32 index = 0; index < nb_parameters; ++index)
        asked.set(index, touched[static_cast<std::size_t>(index)]);
}

void expect_touched(instrument& asked, const std::string& by) {
    for (VstInt32 index = 0; index < nb_parameters; ++index)
        asked.running.expect(asked.get(index) == touched[static_cast<std::size_t>(index)],
                             by + " changes parameter " + std::to_string(index));
}

TEST_F(Programs, ThereAreNone) {
    instrument asked(running);
    touch(asked);
    const guarded_memory name(kVstMaxProgNameLen);
    for (const VstInt32 program : {-1, 0, 1, 127, 100000}) {
        asked.ask(effSetProgram, 0, program);
        running.expect(asked.ask(effGetProgram) == 0, "a program is in use");
        running.expect(asked.ask(effGetProgramNameIndexed, program, -1, name.data()) == 0,
                       "program " + std::to_string(program) + " exists");
    }
    running.expect(name.is_untouched(), "a program that does not exist has a name");
    expect_touched(asked, "effSetProgram");
}

TEST_F(Programs, ProgramChangesChangeNothing) {
    instrument asked(running, set_up{});
    touch(asked);
    score changes;
    for (int channel = 0; channel < 16; ++channel)
        for (const int program : {0, 1, 64, 127})
            changes.push_back({0, {0xC0 | channel, program, 0}});
    asked.render(changes, 64);
    expect_touched(asked, "a program change");
}

TEST_F(Programs, TheNameIsKept) {
    instrument asked(running);
    const std::string first = asked.text(effGetProgramName, kVstMaxProgNameLen);
    running.expect(first == "NONE", "the program is \"" + first + "\" at first");
    for (const std::size_t length : {0u, 1u, 22u, 23u, 24u, 25u, 1023u, 1024u, 1025u, 70000u}) {
        const std::string given(length, 'n');
        const guarded_memory name{std::string_view(given)};
        running.doing = "a name of " + std::to_string(length) + " letters";
        asked.ask(effSetProgramName, 0, 0, name.data());
        const std::string got = asked.text(effGetProgramName, kVstMaxProgNameLen);
        running.expect(got == given.substr(0, kVstMaxProgNameLen - 1),
                       running.doing + " is given back with " + std::to_string(got.size()));
    }
}

} // namespace
