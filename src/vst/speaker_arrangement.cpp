#include "vst/speaker_arrangement.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

bool speaker_arrangement_allocate(VstSpeakerArrangement** arrangement, VstInt32 nbChannels) {
    if (!speaker_arrangement_deallocate(arrangement))
        return false;
    const std::uint64_t nb_bytes =
        offsetof(VstSpeakerArrangement, speakers)
        + static_cast<std::uint64_t>(nbChannels) * sizeof(VstSpeakerProperties);
    if (nb_bytes > PTRDIFF_MAX) // more than can be addressed, or a negative count wrapped around
        return false;

    *arrangement =
        static_cast<VstSpeakerArrangement*>(std::calloc(1, static_cast<std::size_t>(nb_bytes)));
    if (*arrangement == nullptr)
        return false;
    (*arrangement)->numChannels = nbChannels;
    return true;
}

bool speaker_arrangement_deallocate(VstSpeakerArrangement** arrangement) {
    if (arrangement == nullptr)
        return false;
    std::free(*arrangement);
    *arrangement = nullptr;
    return true;
}

bool speaker_copy(VstSpeakerProperties* to, const VstSpeakerProperties* from) {
    if (to == nullptr || from == nullptr)
        return false;
    *to = *from;
    to->name[sizeof(to->name) - 1] = '\0';
    return true;
}

bool speaker_arrangement_match(VstSpeakerArrangement** to, const VstSpeakerArrangement* from) {
    if (to == nullptr || from == nullptr)
        return false;
    if (*to == from)
        return true;
    if (!speaker_arrangement_allocate(to, from->numChannels))
        return false;

    (*to)->type = from->type;
    for (VstInt32 i = 0; i < from->numChannels; ++i)
        speaker_copy((*to)->speakers + i, from->speakers + i);
    return true;
}
