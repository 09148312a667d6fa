#include "platform/terminal_keys.h"

#include "text/number.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <poll.h>
#include <string_view>
#include <termios.h>
#include <unistd.h>

namespace {

// The keyboard protocol that kitty brought: all keys as reports, with releases, and with the key of
// a layout with QWERTY. Other terminals leave the words alone.
constexpr std::string_view ask_for_reports = "\x1B[>15u";
constexpr std::string_view ask_no_more = "\x1B[<u";
constexpr int control_modifier = 4;
constexpr int press_event = 1, repeat_event = 2, release_event = 3;

int number_of(std::string_view text, int otherwise) {
    return text.empty() ? otherwise : parse_number<int>(text).value_or(otherwise);
}

std::string_view field(std::string_view text, char separator, int index) {
    for (; index > 0; --index) {
        const auto end = text.find(separator);
        if (end == text.npos)
            return {};
        text.remove_prefix(end + 1);
    }
    return text.substr(0, text.find(separator));
}

/// code:shifted:base ; modifiers:event, as a key's report has between "ESC [" and "u".
std::optional<terminal_key> read_report(std::string_view report) {
    const std::string_view codes = field(report, ';', 0), state = field(report, ';', 1);
    const int code = number_of(field(codes, ':', 0), 0);
    const int base = number_of(field(codes, ':', 2), code);
    const int modifiers = number_of(field(state, ':', 0), 1) - 1;
    const int event = number_of(field(state, ':', 1), press_event);
    const bool is_release = event == release_event; // is told in any case, lest the note hang
    const bool has_control = modifiers & control_modifier;
    const bool is_c = code == 'c' || base == 'c'; // whatever is printed on the key
    if (has_control && is_c && event == press_event)
        std::raise(SIGINT);
    if (event == repeat_event || (has_control && !is_release))
        return std::nullopt;
    return terminal_key{static_cast<char32_t>(base),
                        is_release ? terminal_key::what::released : terminal_key::what::pressed};
}

} // namespace

std::vector<terminal_key> terminal_keys_parse(std::string& text) {
    std::vector<terminal_key> keys;
    while (!text.empty()) {
        if (text.starts_with("\x1BO") && text.size() > 2) { // a function key of old terminals
            text.erase(0, 3);
            continue;
        }
        if (!text.starts_with("\x1B[")) {
            const bool is_large = text[0] >= 'A' && text[0] <= 'Z';
            const int character = is_large ? text[0] - 'A' + 'a' : text[0];
            keys.push_back({static_cast<char32_t>(character), terminal_key::what::struck});
            text.erase(0, 1);
            continue;
        }
        const auto end = text.find_first_not_of("0123456789:;?<=>", 2);
        if (end == text.npos)
            break;
        const std::string_view report = std::string_view{text}.substr(2, end - 2);
        if (text[end] == 'u')
            if (const auto key = read_report(report))
                keys.push_back(*key);
        text.erase(0, end + 1);
    }
    return keys;
}

terminal_keys::terminal_keys(int output) : output_{output} {
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    termios state{};
    const bool is_ours = foreground < 0 || foreground == getpgrp();
    if (!is_ours || tcgetattr(STDIN_FILENO, &state) != 0)
        return;
    before_.assign(reinterpret_cast<const char*>(&state), sizeof state);
    state.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    state.c_cc[VMIN] = 1;
    tcsetattr(STDIN_FILENO, TCSANOW, &state);
    (void)!write(output_, ask_for_reports.data(), ask_for_reports.size());
    is_open_ = true;
}

terminal_keys::~terminal_keys() {
    if (!is_open_)
        return;
    (void)!write(output_, ask_no_more.data(), ask_no_more.size());
    termios state{};
    std::memcpy(&state, before_.data(), sizeof state);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &state);
}

std::vector<terminal_key> terminal_keys::take() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (is_open_ && poll(&input, 1, 0) > 0) {
        char piece[256];
        const auto nb = read(STDIN_FILENO, piece, sizeof piece);
        if (nb <= 0)
            break;
        text_.append(piece, static_cast<std::size_t>(nb));
    }
    std::u32string characters;
    std::vector<terminal_key> keys;
    for (const terminal_key& key : terminal_keys_parse(text_))
        if (key.happened == terminal_key::what::struck)
            characters += key.character;
        else
            keys.push_back(key);
    for (const char32_t struck : strokes_.take(characters, std::chrono::steady_clock::now()))
        keys.push_back({struck, terminal_key::what::struck});
    return keys;
}
