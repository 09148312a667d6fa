#pragma once
/// Runs the command in a folder of its own.

#include "tests/host/process.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using words = std::vector<std::string>;

inline std::string test_plugin(const std::string& name) { return TEST_PLUGINS "/" + name + ".so"; }

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != text.npos;
}

inline long nb_lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

/// A command that fails.
struct complaint {
    words arguments;
    std::string plugin;
    int status;
    std::string part; ///< of the one sentence
};

struct command_fixture : testing::Test {
    temporary_folder folder;
    process_surroundings surroundings{.folder = folder.path};

    /// `plugin` is one of the tests' or, with a slash, any file; empty lets the command choose.
    process_result run(words arguments, const std::string& plugin) {
        arguments.insert(arguments.begin(), TEST_COMMAND);
        if (!plugin.empty())
            arguments.insert(arguments.end(),
                             {"--plugin", contains(plugin, "/") ? plugin : test_plugin(plugin)});
        return process_run(arguments, surroundings);
    }

    void expect_one_sentence_and_no_file(const complaint& row) {
        const auto before = folder.nb_files();
        const process_result result = run(row.arguments, row.plugin);
        EXPECT_EQ(result.status, row.status) << row.part;
        EXPECT_TRUE(result.err.starts_with("tindelwax: ")) << result.err;
        EXPECT_TRUE(contains(result.err, row.part)) << row.part << " expected in " << result.err;
        EXPECT_EQ(nb_lines(result.err), 1) << result.err;
        EXPECT_EQ(result.out, "") << row.part;
        EXPECT_EQ(folder.nb_files(), before) << row.part;
    }
};
