#include "platform/editor_window.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <windows.h>

struct editor_window::state {
    int width;
    int height;
    HWND window = nullptr;
    POINT pointer{};                   ///< in the window
    std::array<wchar_t, 64> kind{};    ///< the class of the editor seen last
    HINSTANCE kind_instance = nullptr; ///< and its owner

    /// The editor, or whoever has the mouse.
    HWND editor() {
        const HWND child = GetWindow(window, GW_CHILD);
        GetClassNameW(child, kind.data(), static_cast<int>(kind.size()));
        kind_instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(child, GWLP_HINSTANCE));
        const HWND owner = GetCapture();
        return owner ? owner : child;
    }

    void post(UINT message, WPARAM detail = 0) {
        PostMessageW(editor(), message, detail, MAKELPARAM(pointer.x, pointer.y));
    }
};

editor_window::editor_window(int width, int height, window_place corner_on_screen, bool)
    : p_state_{std::make_unique<state>()} {
    p_state_->width = width;
    p_state_->height = height;
    p_state_->window =
        CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP | WS_VISIBLE, corner_on_screen.x,
                        corner_on_screen.y, width, height, nullptr, nullptr, nullptr, nullptr);
    handle_messages();
}

editor_window::~editor_window() { destroy(); }

void* editor_window::handle() const { return p_state_->window; }

void editor_window::resize(int width, int height) {
    p_state_->width = width;
    p_state_->height = height;
    SetWindowPos(p_state_->window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

void editor_window::show(bool shown) { ShowWindow(p_state_->window, shown ? SW_SHOW : SW_HIDE); }

void editor_window::show_content(bool shown) {
    ShowWindow(GetWindow(p_state_->window, GW_CHILD), shown ? SW_SHOW : SW_HIDE);
}

void editor_window::destroy() {
    if (HWND gone = std::exchange(p_state_->window, nullptr))
        DestroyWindow(gone);
    handle_messages();
}

picture editor_window::take() const {
    const int width = p_state_->width;
    const int height = p_state_->height;
    BITMAPINFO layout{};
    layout.bmiHeader = {sizeof layout.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HDC screen = GetDC(p_state_->window), memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateDIBSection(memory, &layout, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY);
    GdiFlush();
    picture shown{width, height, {}};
    const std::size_t nb_pixels =
        bits ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) : 0;
    shown.pixels.reserve(nb_pixels * 3);
    for (std::size_t i = 0; i < nb_pixels; ++i)
        for (const int shift : {16, 8, 0}) {
            const std::uint32_t pixel = static_cast<const std::uint32_t*>(bits)[i];
            shown.pixels.push_back(static_cast<std::uint8_t>(pixel >> shift));
        }
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(p_state_->window, screen);
    return shown;
}

long editor_window::nb_left() const {
    WNDCLASSW kind;
    return (GetWindow(p_state_->window, GW_CHILD) ? 1 : 0)
           + (GetClassInfoW(p_state_->kind_instance, p_state_->kind.data(), &kind) ? 1 : 0);
}

void editor_window::take_keys() { SetFocus(p_state_->window); }

bool editor_window::gets_keys() { return GetFocus() == p_state_->window; }

void editor_window::move(window_place in_window) {
    p_state_->pointer = {in_window.x, in_window.y};
    p_state_->post(WM_MOUSEMOVE);
}

void editor_window::press() { p_state_->post(WM_LBUTTONDOWN, MK_LBUTTON); }
void editor_window::release() { p_state_->post(WM_LBUTTONUP); }

void editor_window::click_twice() {
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        p_state_->post(message);
}

void editor_window::turn_wheel(int notches) {
    POINT on_screen = p_state_->pointer;
    ClientToScreen(p_state_->window, &on_screen);
    PostMessageW(p_state_->editor(), WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA),
                 MAKELPARAM(on_screen.x, on_screen.y));
}

void editor_window::hold(key held, bool down) {
    std::array<BYTE, 256> keys{};
    GetKeyboardState(keys.data());
    keys[held == key::shift ? VK_SHIFT : VK_CONTROL] = down ? 0x80 : 0;
    SetKeyboardState(keys.data());
}

void editor_window::take_mouse_away() { SetCapture(p_state_->window); }
void editor_window::give_mouse_back() { ReleaseCapture(); }

void editor_window::handle_messages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}
