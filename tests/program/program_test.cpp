#include "program/program.h"

#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using program_ptr = std::unique_ptr<program, decltype(&program_free)>;
using namespace std::string_literals;

std::string record_of(const program* p_prog) {
    char* data = nullptr;
    std::size_t byte_size = 0;
    program_to_memory(p_prog, &data, &byte_size);
    const std::unique_ptr<char[]> owner{data};
    return {data, byte_size};
}

/// The registry's record: little-endian, packed.
const std::string init_record = "INIT\0\2\0\0\0"
                                "P\0\0\0Q\0\0\0"
                                "\1\0\0\0\2\0\0\0"
                                "\0\0\x80\x3F\0\0\0\x3F"s;

struct Program : testing::Test {
    std::unique_ptr<control, decltype(&control_free)> registry{control_create("c"), control_free};
    std::atomic<float> values[2] = {1.0f, 0.5f};
    temporary_folder folder;

    Program() {
        for (unsigned j = 0; j < 2; ++j) {
            control_add_parameter(registry.get(), "p");
            registry->parameters[j]->value = &values[j];
            registry->parameters[j]->midi_cc = 80 + j;
            registry->parameters[j]->midi_channel = 1 + j;
        }
    }
};

TEST_F(Program, ABankOfCopiesOfTheRegistryTravelsThroughFiles) {
    const program_ptr larger{program_create("INIT", 10), program_free};
    program_from_control(larger.get(), registry.get());
    EXPECT_EQ(record_of(larger.get()).size(), 129u);
    const std::unique_ptr<program_bank, decltype(&program_bank_free)> bank{
        program_bank_create("BANK", 3, registry.get()), program_bank_free};
    EXPECT_EQ(registry->nb_programs, 3u);
    ASSERT_EQ(bank->programs.size(), 3u);
    const std::string file = folder / "p.fxp";
    for (const auto& saved : bank->programs) {
        file_write(file, std::string(5000, 'x')); // replaced, not overlaid
        program_to_file(saved.get(), file.c_str());
        EXPECT_EQ(file_content(file), init_record);
        const program_ptr loaded{program_create("NONE", 2), program_free};
        program_from_file(loaded.get(), file.c_str());
        EXPECT_EQ(record_of(loaded.get()), init_record);
    }
}

TEST_F(Program, RecordsThatDoNotFitAreRefusedWhole) {
    std::vector<std::string> records{std::string(200, 'x'), "A much longer name" + init_record};
    for (const std::string& count : {"\1\0\0\0"s, "\3\0\0\0"s, "\xFF\xFF\xFF\xFF"s})
        records.push_back("INIT\0"s + count + init_record.substr(9));
    for (std::size_t cut = 0; cut < init_record.size(); ++cut)
        records.push_back(init_record.substr(0, cut));
    const program_ptr prog{program_create("MINE", 2), program_free};
    const std::string before = record_of(prog.get());
    for (const std::string& record : records) {
        file_write(folder / "p.fxp", record);
        program_from_file(prog.get(), (folder / "p.fxp").c_str());
        ASSERT_EQ(record_of(prog.get()), before) << "file of " << record.size();
        if (record.starts_with("A much"))
            continue; // whole in memory
        const std::vector<char> exact(record.begin(), record.end());
        program_from_memory(prog.get(), exact.data(), exact.size());
        ASSERT_EQ(record_of(prog.get()), before) << "record of " << record.size();
    }
    program_from_file(prog.get(), (folder / "missing").c_str());
    program_from_file(prog.get(), folder.path.c_str());
    program_to_file(prog.get(), folder.path.c_str());
    EXPECT_EQ(record_of(prog.get()), before);
}

} // namespace
