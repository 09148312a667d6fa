#pragma once
/// The keys that are struck in the terminal, one by one. All is [ui].

#include "platform/key_strokes.h"

#include <vector>

struct terminal_key {
    enum class what { pressed, released, struck }; ///< struck where nobody tells of releases
    char32_t character; ///< of that key in a layout with QWERTY, where the terminal knows it
    what happened;
};

/// Takes what stands at the text's beginning as far as it is whole: characters, and reports of
/// keys but for repeats. Letters are small ones, as the keys are the same.
[[nodiscard]] std::vector<terminal_key> terminal_keys_parse(std::string& text);

class terminal_keys {
public:
    /// Reads standard input key by key if it is a terminal that this process may read, and asks it
    /// to tell of releases. `output` leads to the same terminal.
    explicit terminal_keys(int output);
    ~terminal_keys(); ///< puts everything back
    terminal_keys(const terminal_keys&) = delete;
    terminal_keys& operator=(const terminal_keys&) = delete;

    /// Since the last call. A key that is held is told once. Ctrl-C interrupts as ever.
    [[nodiscard]] std::vector<terminal_key> take();

private:
    int output_;
    bool is_open_ = false;
    std::string text_{};
    key_strokes strokes_{};
    std::string before_; // the terminal's state, as bytes
};
