#pragma once
/// A dynamic library. It stays in memory until the process ends, unless its user wants it unloaded:
/// one that brings its own C++ runtime leaves memory behind when it is unmapped, and threads of its
/// own would run on in nothing.

#include <filesystem>
#include <string>

class library {
public:
    enum class in_the_end { stays, is_unloaded };

    /// Maps the file and runs its initialisers. Where that fails, `error` tells why.
    explicit library(const std::filesystem::path& file, in_the_end then = in_the_end::stays);

    /// Where it is unloaded, what was found in it is gone, unless the file was loaded elsewhere,
    /// too.
    ~library();
    library(const library&) = delete;
    library& operator=(const library&) = delete;

    /// The address of an exported function; null where there is none or the library is not loaded.
    [[nodiscard]] void* find(const char* name) const;

    std::string error{};

private:
    void* handle_;
    in_the_end then_;
};

/// Whether somebody in this process has the file loaded.
[[nodiscard]] bool library_is_loaded(const std::filesystem::path& file);
