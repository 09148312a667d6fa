#pragma once
/// A file without a name, for what is too much for memory. It vanishes with the process.

#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

class scratch_file {
public:
    scratch_file(); ///< Throws a failure if there is no place for it.

    [[nodiscard]] std::FILE* stream() const { return p_stream_.get(); }

    /// Throws a failure for what failed with this value of errno.
    [[noreturn]] void fail(int error_number) const;

    /// Throws a failure if that cannot be; a shortage of room may show in replay alone.
    template <typename Item>
    void write(std::span<const Item> items) {
        write(items.data(), items.size_bytes());
    }

    /// Hands all items to `take`, piece after piece. Throws a failure if any is lost.
    template <typename Item, typename Take>
    void replay(Take take) {
        std::vector<Item> room((1 << 16) / sizeof(Item));
        rewind();
        while (const std::size_t nb_bytes = read(room.data(), room.size() * sizeof(Item)))
            take(std::span{room}.first(nb_bytes / sizeof(Item)));
    }

private:
    void write(const void* bytes, std::size_t nb_bytes);
    void rewind();
    [[nodiscard]] std::size_t read(void* bytes, std::size_t nb_bytes);

    std::filesystem::path folder_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> p_stream_;
};
