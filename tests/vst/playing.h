#pragma once
/// What the tests of the plug-in class share: an instrument in a host's hands.

#include "korvel/korvel.h"
#include "plugin/event_list.h"
#include "tests/conformance/events.h"
#include "vst/organ.h"

#include <cstdlib>
#include <memory>

inline VstIntPtr VSTCALLBACK silent_host(AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) {
    return 0;
}

/// The plug-in as the factory makes it, with programs where a test wants some.
inline std::unique_ptr<Organ> make_organ(int nb_programs = 0) {
    setenv("TINDELWAX_SEED", "1", 1);
    organ* p_organ = korvel_create("Tindelwax");
    return std::make_unique<Organ>(silent_host, nb_programs,
                                   static_cast<VstInt32>(p_organ->p_control->nb_parameters),
                                   p_organ);
}

inline void send(Organ& effect, const score& messages) {
    event_list list;
    for (const midi& message : messages)
        list.add_midi(message_of(message), static_cast<int>(message.frame));
    effect.processEvents(list.records());
}
