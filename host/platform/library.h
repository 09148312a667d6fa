#pragma once
/// A dynamic library. It stays in memory until the process ends, unless its user unloads it: one
/// that brings its own C++ runtime leaves memory behind when it is unmapped, and threads of its own
/// would run on in nothing.

#include <filesystem>
#include <string>

class library {
public:
    /// Maps the file and runs its initialisers. Where that fails, `error` tells why.
    explicit library(const std::filesystem::path& file);

    /// The address of an exported function; null where there is none or the library is not loaded.
    [[nodiscard]] void* find(const char* name) const;

    /// What was found in it is gone, unless the file was loaded elsewhere, too.
    void unload();

    std::string error{};

private:
    void* handle_ = nullptr;
};

/// Whether somebody in this process has the file loaded.
[[nodiscard]] bool library_is_loaded(const std::filesystem::path& file);
