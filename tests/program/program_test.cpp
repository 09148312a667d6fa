#include "program/program.h"

#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using program_ptr = std::unique_ptr<program, decltype(&program_free)>;

std::string record_of(const program* p_prog) {
    char* data = nullptr;
    std::size_t byte_size = 0;
    program_to_memory(p_prog, &data, &byte_size);
    const std::unique_ptr<char[]> owner{data};
    return {data, byte_size};
}

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

    program_ptr snapshot(const char* name, unsigned nb_parameters = 2) const {
        program_ptr prog{program_create(name, nb_parameters), program_free};
        program_from_control(prog.get(), registry.get());
        return prog;
    }
};

using namespace std::string_literals;

const std::string init_record = "INIT\0\2\0\0\0"
                                "P\0\0\0Q\0\0\0"
                                "\1\0\0\0\2\0\0\0"
                                "\0\0\x80\x3F\0\0\0\x3F"s;

TEST_F(Program, RecordsAreLittleEndianAndPacked) {
    EXPECT_EQ(record_of(snapshot("INIT").get()), init_record);
    EXPECT_EQ(record_of(snapshot("", 0).get()), "\0\0\0\0\0"s);
    EXPECT_EQ(record_of(snapshot("INIT", 10).get()).size(), 129u) << "more than the registry has";
    EXPECT_EQ(record_of(snapshot("INIT", 1).get()).size(), 21u) << "fewer than the registry has";
}

TEST_F(Program, AFileBringsItsProgramBack) {
    const std::string file = folder / "p.fxp";
    const auto saved = snapshot("INIT");
    saved->midi_cc[0] = -1;
    file_write(file, std::string(5000, 'x')); // replaced, not overlaid
    program_to_file(saved.get(), file.c_str());
    EXPECT_EQ(file_content(file), record_of(saved.get()));

    const program_ptr loaded{program_create("NONE", 2), program_free};
    program_from_file(loaded.get(), file.c_str());
    EXPECT_EQ(record_of(loaded.get()), record_of(saved.get()));
}

TEST_F(Program, RecordsThatDoNotFitAreRefusedWhole) {
    const auto with_count = [](std::string count) {
        return "INIT\0"s + count + init_record.substr(9);
    };
    std::vector<std::string> records{with_count("\1\0\0\0"s), with_count("\3\0\0\0"s),
                                     with_count("\xFF\xFF\xFF\xFF"s), std::string(200, 'x'),
                                     "A much longer name" + init_record};
    for (std::size_t cut = 0; cut < init_record.size(); ++cut)
        records.push_back(init_record.substr(0, cut));
    const auto prog = snapshot("MINE");
    prog->midi_cc[1] = 7;
    const std::string before = record_of(prog.get());
    for (std::size_t i = 0; i < records.size(); ++i) {
        file_write(folder / "p.fxp", records[i]);
        program_from_file(prog.get(), (folder / "p.fxp").c_str());
        ASSERT_EQ(record_of(prog.get()), before) << "file " << i;
        if (i == 4)
            continue; // whole in memory
        const std::vector<char> exact(records[i].begin(), records[i].end());
        program_from_memory(prog.get(), exact.data(), exact.size());
        ASSERT_EQ(record_of(prog.get()), before) << "record " << i;
    }
    program_from_file(prog.get(), (folder / "missing").c_str());
    program_from_file(prog.get(), folder.path.c_str());
    program_to_file(prog.get(), folder.path.c_str());
    EXPECT_EQ(record_of(prog.get()), before);
}

TEST_F(Program, ABankStartsAsCopiesOfTheRegistry) {
    for (unsigned nb_programs : {0u, 3u}) {
        const std::unique_ptr<program_bank, decltype(&program_bank_free)> bank{
            program_bank_create("BANK", nb_programs, registry.get()), program_bank_free};
        EXPECT_EQ(registry->nb_programs, nb_programs);
        ASSERT_EQ(bank->programs.size(), nb_programs);
        for (const program* p_prog : bank->programs)
            EXPECT_EQ(record_of(p_prog), init_record);
        bank_to_file(bank.get(), (folder / "b.fxb").c_str());
        EXPECT_EQ(folder.nb_files(), 0u);
    }
}

} // namespace
