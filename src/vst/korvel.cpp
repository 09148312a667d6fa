#include "korvel/korvel.h"

#include "vst/organ.h"
#include "vst/vstplugmain.h"

/// The library's instrument: no programs.
AudioEffect* createEffectInstance(audioMasterCallback audioMaster) {
    organ* p_organ = korvel_create("Tindelwax");
    return new Organ(audioMaster, 0, static_cast<VstInt32>(p_organ->p_control->nb_parameters),
                     p_organ);
}
