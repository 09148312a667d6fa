#pragma once
/// Memory whose last byte lies before a page that nobody may touch: reading or writing beyond it is
/// a crash. The bytes in front of it are compared when asked.

#include <cstddef>
#include <optional>
#include <string_view>

class guarded_memory {
public:
    static constexpr char untouched = '\x5a';

    /// Filled with `untouched`. Both throw std::bad_alloc where there is no memory.
    explicit guarded_memory(std::size_t nb_bytes);
    explicit guarded_memory(std::string_view text); ///< holds the text and its terminating zero
    ~guarded_memory();
    guarded_memory(const guarded_memory&) = delete;
    guarded_memory& operator=(const guarded_memory&) = delete;

    [[nodiscard]] char* data() const { return p_bytes_; }
    [[nodiscard]] std::size_t size() const { return nb_bytes_; }

    void refill();
    [[nodiscard]] bool is_untouched() const;
    [[nodiscard]] bool front_holds() const;

    /// The text in it; nothing when it has no end.
    [[nodiscard]] std::optional<std::string_view> text() const;

private:
    std::size_t nb_bytes_;
    std::size_t nb_pages_;
    char* p_pages_;
    char* p_bytes_;
};
