#pragma once
/// The process and what it inherits.

#include <filesystem>
#include <string>
#include <vector>

/// What main was given, without the program's name: in UTF-8, whatever the system's code page is.
[[nodiscard]] std::vector<std::string> program_arguments(int argc, char** argv);

/// Empty if the system does not tell.
[[nodiscard]] std::filesystem::path executable_path();

void set_environment(const char* name, const char* value);

/// From now on a crash ends the process at once, without asking anyone.
void silence_crash_dialogs();

/// Loads what a host of this system has loaded anyway, for good.
void keep_system_libraries();

/// Keeps the memory of the process in the machine's own, and what it takes later if no limit
/// stands against that. Returns false where the system does not grant it.
bool keep_memory();
