#pragma once
/// A dynamic library, which stays in memory until the process ends: one that brings its own C++
/// runtime leaves memory behind when it is unmapped, and threads of its own would run on in
/// nothing.

#include <filesystem>
#include <string>

class library {
public:
    /// Maps the file and runs its initialisers. Where that fails, `error` tells why.
    explicit library(const std::filesystem::path& file);

    /// The address of an exported function; null where there is none or the library is not loaded.
    [[nodiscard]] void* find(const char* name) const;

    std::string error{};

private:
    void* handle_ = nullptr;
};
