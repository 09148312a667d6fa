#pragma once
/// Registrations: which stops are drawn and how the controls stand, as texts that players write.
/// The first line that starts with # is the title, the others are a comment; each remaining line is
/// a setting, Name=value. All is [setup].

#include "plugin/parameters.h"

#include <filesystem>

struct registration {
    std::string name{}; ///< the file's, without its ending
    std::string title{};
    std::string comment{};
    struct line {
        int number; ///< in the file
        parameter_setting setting;
    };
    std::vector<line> lines{};
    std::filesystem::path file{};
};

/// A parameter of an instrument and where it is put.
struct parameter_value {
    int index;
    float value; ///< 0 to 1
};

/// Throws a failure of misuse that names the file, and the line that is no setting.
[[nodiscard]] registration registration_read(const std::filesystem::path& file);

/// The player's own and then those that came with the program, each by name; one of the player's
/// hides another's of that name. Files that cannot be read are told of and left out.
[[nodiscard]] std::vector<registration> registrations_list();

/// The list for people: program numbers as messages count them, from 0, names, titles and comments,
/// and where more can be put.
[[nodiscard]] std::string registrations_text();

/// The registration of that name, in upper or lower case, or in the file of that name. Throws a
/// failure of misuse that says which there are.
[[nodiscard]] registration registration_find(const std::string& name_or_file);

/// Whether an instrument with these parameters has most that it names, and so is meant.
[[nodiscard]] bool registration_concerns(const registration& one,
                                         const std::vector<std::string>& parameters);

/// Where an instrument with these parameters has it. Throws a failure of misuse that names file and
/// line of a parameter that is not there.
[[nodiscard]] std::vector<parameter_value>
registration_resolve(const registration& chosen, const std::vector<std::string>& parameters);

/// The instrument as it stands, as such a text.
[[nodiscard]] std::string registration_text(plugin& instrument, const std::string& title);
