/// System exclusive messages, and events that are none of the instrument's.

#include "conformance/instrument.h"
#include "probe/signal.h"

namespace {

using Events = Row;

long nb_echoes(const instrument& played, const VstEvents* list) {
    long nb = 0;
    for (const host_call& call : played.its_host.calls)
        nb += call.opcode == audioMasterProcessEvents && call.ptr == list;
    return nb;
}

void expect_echo(instrument& played, event_list& events) {
    played.its_host.calls.clear();
    VstEvents* list = events.records();
    played.running.expect(played.ask(effProcessEvents, 0, 0, list) == 1,
                          "it is not answered with 1");
    played.running.expect(nb_echoes(played, list) == 1, "it is not echoed once");
}

TEST_F(Events, DumpsOfAnyLengthAreEchoed) {
    instrument played(running, set_up{});
    for (const std::size_t length :
         {0u, 1u, 2u, 3u, 5u, 4095u, 4096u, 4097u, 4098u, 4099u, 65535u, 65536u}) {
        running.doing = "a dump of " + std::to_string(length) + " bytes";
        const guarded_memory dump(length);
        event_list events;
        events.add_sysex({reinterpret_cast<const std::uint8_t*>(dump.data()), dump.size()}, 0);
        expect_echo(played, events);
        running.expect(dump.is_untouched(), "it is changed");
    }
}

/// The list is handed back once for each dump in it.
TEST_F(Events, AListIsEchoedOnceADump) {
    instrument played(running, set_up{});
    const std::uint8_t dump[]{0xF0, 0x7D, 1, 2, 0xF7};
    event_list events;
    events.add_sysex(dump, 0);
    events.add_midi(message_of(note_on(0, 50)), 0);
    events.add_sysex(dump, 0);
    played.send(events);
    running.expect(nb_echoes(played, events.records()) == 2, "two dumps are not echoed twice");
    const recording sound = played.render({}, 4800);
    running.expect(peak(sound.right) > 1e-3, "the note between two dumps is lost");
}

} // namespace
