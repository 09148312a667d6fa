#pragma once
/// A folder of a test's own, gone with the test.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

struct temporary_folder {
    std::filesystem::path path;

    temporary_folder() {
        std::string name = std::filesystem::temp_directory_path() / "tindelwax-test-XXXXXX";
        path = mkdtemp(name.data());
    }
    ~temporary_folder() { std::filesystem::remove_all(path); }
    temporary_folder(const temporary_folder&) = delete;
    temporary_folder& operator=(const temporary_folder&) = delete;

    [[nodiscard]] std::string operator/(const std::string& name) const { return path / name; }

    /// The names in it, hidden ones too.
    [[nodiscard]] std::size_t nb_files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator{path},
                                                      std::filesystem::directory_iterator{}));
    }
};

inline std::string file_content(const std::string& file) {
    std::ifstream stream{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{stream}, {}};
}

template <typename Bytes>
void file_write(const std::string& file, const Bytes& bytes) {
    std::ofstream stream{file, std::ios::binary};
    for (const auto byte : bytes)
        stream.put(static_cast<char>(byte));
}
