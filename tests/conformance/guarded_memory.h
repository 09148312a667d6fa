#pragma once
/// Memory whose last byte lies before a page that nobody may touch. Reading or writing beyond it
/// ends the process with the row's name; the bytes in front of it are compared when asked.

#include <cstddef>
#include <string_view>

class guarded_memory {
public:
    static constexpr char untouched = '\x5a';

    explicit guarded_memory(std::size_t nb_bytes);  ///< filled with `untouched`
    explicit guarded_memory(std::string_view text); ///< holds the text and its terminating zero
    ~guarded_memory();
    guarded_memory(const guarded_memory&) = delete;
    guarded_memory& operator=(const guarded_memory&) = delete;

    [[nodiscard]] char* data() const { return bytes; }
    [[nodiscard]] std::size_t size() const { return nb_bytes; }

    void refill();
    [[nodiscard]] bool is_untouched() const;
    [[nodiscard]] bool front_holds() const;

    /// The text in it. Throws a mismatch when it has no end.
    [[nodiscard]] std::string_view text() const;

private:
    std::size_t nb_bytes;
    std::size_t nb_pages;
    char* mapping;
    char* bytes;
};
