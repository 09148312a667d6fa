#include "live/status_line.h"

#include <gtest/gtest.h>

namespace {

TEST(StatusLine, WhatMattersMostFitsIntoEveryTerminal) {
    const sound_status widest{"ALSA", "", "HDA Intel PCH, Zürich", 44100, 1024, 100.7, 1, 12345};
    const std::string count = " 44.1 kHz/1024 100.7 ms 12345 xruns",
                      all = count + " CPU 100 % 49 keys [######|####..] CLIP";
    for (const auto& [nb_columns, text] :
         {std::pair{96u, "ALSA HDA Intel PCH, Z" + all},
          {79u, "ALSA" + all},
          {39u, "ALSA" + count},
          {38u, std::string{"ALSA 44.1 kHz/1024 100.7 ms CPU 100 %"}}})
        EXPECT_EQ(status_text(widest, {{2, 0.1f}, 49}, true, nb_columns), text);
}

} // namespace
