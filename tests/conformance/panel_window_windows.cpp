#include "conformance/panel_window.h"
#include "conformance/trial.h"
#include "tests/panel_picture/panel_picture.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <windows.h>

namespace {

CDrawContext picture(HWND window) {
    CDrawContext shown(480, 400);
    BITMAPINFO layout{};
    layout.bmiHeader = {sizeof layout.bmiHeader, 480, -400, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HDC screen = GetDC(window), memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateDIBSection(memory, &layout, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, 480, 400, screen, 0, 0, SRCCOPY);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    for (int y = 0; y < 400; ++y)
        for (std::uint32_t& pixel : shown.row(y))
            pixel = *pixels++ & 0xFFFFFF;
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, screen);
    return shown;
}

} // namespace

struct panel_window::state {
    HWND window = nullptr;
    POINT pointer{};                   ///< on the panel
    std::array<wchar_t, 64> kind{};    ///< the class of the panel seen last
    HINSTANCE kind_instance = nullptr; ///< and its owner

    /// The panel, or whoever has the mouse.
    HWND panel() {
        const HWND child = GetWindow(window, GW_CHILD);
        GetClassNameW(child, kind.data(), static_cast<int>(kind.size()));
        kind_instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(child, GWLP_HINSTANCE));
        const HWND owner = GetCapture();
        return owner ? owner : child;
    }

    void post(UINT message, WPARAM detail = 0) {
        PostMessageW(panel(), message, detail, MAKELPARAM(pointer.x, pointer.y));
    }
};

panel_window::panel_window(CPoint corner_on_screen) : p_state(std::make_unique<state>()) {
    p_state->window =
        CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP | WS_VISIBLE, corner_on_screen.x,
                        corner_on_screen.y, 480, 400, nullptr, nullptr, nullptr, nullptr);
    if (!p_state->window)
        throw mismatch{"no window can be shown: error " + std::to_string(GetLastError())
                       + "; run it where there is a display, or with xvfb-run"};
    SetFocus(p_state->window);
    handle_messages();
}

panel_window::~panel_window() { destroy(); }

void* panel_window::handle() const { return p_state->window; }

void panel_window::destroy() {
    if (HWND gone = std::exchange(p_state->window, nullptr))
        DestroyWindow(gone);
    handle_messages();
}

std::string panel_window::difference(const CDrawContext& expected) {
    return first_difference(picture(p_state->window), expected);
}

long panel_window::nb_left() {
    WNDCLASSW kind;
    return (GetWindow(p_state->window, GW_CHILD) ? 1 : 0)
           + (GetClassInfoW(p_state->kind_instance, p_state->kind.data(), &kind) ? 1 : 0);
}

bool panel_window::gets_keys() { return GetFocus() == p_state->window; }

void panel_window::move(CPoint on_panel) {
    p_state->pointer = {on_panel.x, on_panel.y};
    p_state->post(WM_MOUSEMOVE);
}

void panel_window::press() { p_state->post(WM_LBUTTONDOWN, MK_LBUTTON); }
void panel_window::release() { p_state->post(WM_LBUTTONUP); }

void panel_window::click_twice() {
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        p_state->post(message);
}

void panel_window::turn_wheel(int notches) {
    POINT on_screen = p_state->pointer;
    ClientToScreen(p_state->window, &on_screen);
    PostMessageW(p_state->panel(), WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA),
                 MAKELPARAM(on_screen.x, on_screen.y));
}

void panel_window::hold(key held, bool down) {
    std::array<BYTE, 256> keys{};
    GetKeyboardState(keys.data());
    keys[held == key::shift ? VK_SHIFT : VK_CONTROL] = down ? 0x80 : 0;
    SetKeyboardState(keys.data());
}

void panel_window::take_mouse_away() { SetCapture(p_state->window); }
void panel_window::give_mouse_back() { ReleaseCapture(); }

void panel_window::handle_messages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}
