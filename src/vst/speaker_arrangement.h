#pragma once
/// Speaker arrangements of any number of channels: a header and one entry a channel, in one piece
/// of memory that only these functions allocate and release. Functions are [setup]; a null pointer
/// to a pointer, where nothing can be stored, is answered with false.

#include "vst/interface.h"

/// Replaces *arrangement by one of `nbChannels` entries, zero but for its channel count. False,
/// with *arrangement null, for a negative count or when memory runs out.
bool speaker_arrangement_allocate(VstSpeakerArrangement** arrangement, VstInt32 nbChannels);

/// Releases *arrangement, which may be null already, and stores null.
bool speaker_arrangement_deallocate(VstSpeakerArrangement** arrangement);

/// Copies one entry, its name cut to 63 characters. False when either is null.
bool speaker_copy(VstSpeakerProperties* to, const VstSpeakerProperties* from);

/// Replaces *to by a copy of `from`; one that matches itself is left alone. False when `from` is
/// null or the copy cannot be allocated.
bool speaker_arrangement_match(VstSpeakerArrangement** to, const VstSpeakerArrangement* from);
