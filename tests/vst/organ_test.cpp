#include "vst/organ.h"

#include "tests/temporary_folder.h"
#include "tests/vst/playing.h"

#include <gtest/gtest.h>
#include <numeric>

namespace {

TEST(PlugIn, ProgramsStoreRecallAndTravelThroughFiles) {
    const temporary_folder folder;
    const std::string file = folder / "saved";
    const auto p_effect = make_organ(3);
    p_effect->setParameter(6, 0.75f);
    p_effect->storeCurrentProg();
    p_effect->ProgSave(file.c_str());
    send(*p_effect, {{0, {0xC5, 1, 0}}}); // on any channel
    EXPECT_EQ(p_effect->getProgram(), 1);
    EXPECT_EQ(p_effect->getParameter(6), 0.5f);
    for (const VstInt32 program : {3, -1, INT32_MAX}) {
        p_effect->setProgram(program);
        EXPECT_EQ(p_effect->getProgram(), 1) << program;
    }
    p_effect->ProgLoad(file.c_str());
    EXPECT_EQ(p_effect->getParameter(6), 0.75f);

    const auto p_empty = make_organ();
    p_empty->storeCurrentProg();
    p_empty->ProgSave((folder / "empty").c_str());
    p_empty->ProgLoad(file.c_str());
    EXPECT_EQ(folder.nb_files(), 1u) << "without a program there is nothing to save";
}

TEST(PlugIn, TheLatestDumpIsKeptWithoutItsEnds) {
    const auto p_effect = make_organ();
    char bytes[5000];
    std::iota(std::begin(bytes), std::end(bytes), '\1');
    VstMidiSysexEvent dump{};
    dump.type = kVstSysExType;
    dump.sysexDump = bytes;
    VstEvents events{1, 0, {reinterpret_cast<VstEvent*>(&dump)}};
    for (const auto& [nb_bytes, kept] : {std::pair{6, 4}, {2, 0}, {4097, 4095}, {5000, 4095}}) {
        dump.dumpBytes = nb_bytes;
        p_effect->processEvents(&events);
        EXPECT_EQ(p_effect->sysexPayload(), std::string_view(bytes + 1, kept)) << nb_bytes;
    }
}

} // namespace
