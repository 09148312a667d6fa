#pragma once
/// What the rows hold a library to where no closed form says it: the plain form of the instrument,
/// which is given its blocks, notes and parameters by hand.

#include "conformance/instrument.h"

#include <memory>

struct control;
struct organ;

class model {
public:
    /// With the trial's seed, ready to play; the host's blocks are left out of account.
    model(const trial& running, const set_up& wanted);
    ~model();
    model(const model&) = delete;
    model& operator=(const model&) = delete;

    void set(VstInt32 index, float value);

    /// Plays the next frames, in pieces of 64 and what remains. Of messages it takes notes.
    recording render(const score& played, long nb_frames);

private:
    std::unique_ptr<control> registry;
    std::unique_ptr<organ> engine;
};
