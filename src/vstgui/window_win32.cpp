#include "vstgui/window.h"

#include "platform/module_handle/module_handle.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <windows.h>
#include <windowsx.h>

namespace {

HINSTANCE library() { return static_cast<HINSTANCE>(hInstance); }

int keys_held() {
    const auto held = [](int key) { return GetKeyState(key) < 0; };
    return (held(VK_SHIFT) ? kShift : 0) | (held(VK_CONTROL) ? kControl : 0)
           | (held(VK_MENU) ? kAlt : 0);
}

CPoint point_of(LPARAM place) { return {GET_X_LPARAM(place), GET_Y_LPARAM(place)}; }

class Win32Window final : public PlatformWindow {
public:
    Win32Window(const CDrawContext& shown, PlatformWindowListener& hearer)
        : picture(shown), listener(hearer) {}
    ~Win32Window() override;

    /// Returns whether the window is there.
    bool create(HWND parent);

    void put(const CRect& area) override;
    void* getHandle() override { return window; }
    void handleEvents() override {} // the host's message loop brings them

private:
    static LRESULT CALLBACK receive(HWND receiver, UINT message, WPARAM detail, LPARAM place);
    LRESULT handle(UINT message, WPARAM detail, LPARAM place);
    void draw(HDC surface, const CRect& area) const;
    void paint();
    void print(HDC surface);
    void press(int clicks, LPARAM place);
    void release(LPARAM place);
    LRESULT wheel(WPARAM detail, LPARAM place);

    /// Each window has a class of its own: what is opened or closed on another thread cannot come
    /// between a class and its window.
    const std::wstring class_name =
        L"vstgui frame " + std::to_wstring(reinterpret_cast<std::uintptr_t>(this));
    const CDrawContext& picture;
    PlatformWindowListener& listener;
    HWND window = nullptr; ///< null once the parent has gone
    bool pressed = false;  ///< the left button; meanwhile the mouse is captured
};

bool Win32Window::create(HWND parent) {
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.style = CS_DBLCLKS;
    kind.lpfnWndProc = receive;
    kind.hInstance = library();
    kind.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // IDC_ARROW
    kind.lpszClassName = class_name.c_str();
    if (RegisterClassExW(&kind) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        return false; // one that was closed in its last message has left it here
    window = CreateWindowExW(0, class_name.c_str(), L"", WS_CHILD | WS_CLIPSIBLINGS, 0, 0,
                             picture.bounds().width(), picture.bounds().height(), parent, nullptr,
                             library(), nullptr);
    if (!window)
        return false;
    ShowWindow(window, SW_SHOWNA); // without taking the keyboard
    // Only now does the listener get messages: it is being made itself. Those that came earlier
    // are no loss, for it shows the whole picture at its first turn anyway; but the host may have
    // answered the news of the window by destroying it.
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    return IsWindow(window) != 0;
}

/// The class must go before the library is unloaded.
Win32Window::~Win32Window() {
    if (const HWND closing = std::exchange(window, nullptr)) {
        SetWindowLongPtrW(closing, GWLP_USERDATA, 0);
        DestroyWindow(closing);
    }
    UnregisterClassW(class_name.c_str(), library());
}

void Win32Window::put(const CRect& area) {
    if (!window)
        return;
    const HDC surface = GetDC(window);
    draw(surface, area);
    ReleaseDC(window, surface);
}

void Win32Window::draw(HDC surface, const CRect& area) const {
    const CRect shown = area.intersection(picture.bounds());
    if (shown.empty())
        return;
    BITMAPINFO layout{};
    layout.bmiHeader.biSize = sizeof layout.bmiHeader;
    layout.bmiHeader.biWidth = picture.bounds().width();
    layout.bmiHeader.biHeight = -shown.height(); // rows from the top
    layout.bmiHeader.biPlanes = 1;
    layout.bmiHeader.biBitCount = 32;
    layout.bmiHeader.biCompression = BI_RGB;
    SetDIBitsToDevice(surface, shown.left, shown.top, static_cast<DWORD>(shown.width()),
                      static_cast<DWORD>(shown.height()), shown.left, 0, 0,
                      static_cast<UINT>(shown.height()), picture.row(shown.top).data(), &layout,
                      DIB_RGB_COLORS);
}

LRESULT CALLBACK Win32Window::receive(HWND receiver, UINT message, WPARAM detail, LPARAM place) {
    auto* self = reinterpret_cast<Win32Window*>(GetWindowLongPtrW(receiver, GWLP_USERDATA));
    if (!self)
        return DefWindowProcW(receiver, message, detail, place);
    return self->handle(message, detail, place);
}

/// Most calls to the listener may end this object: each is the last that its message does here.
LRESULT Win32Window::handle(UINT message, WPARAM detail, LPARAM place) {
    switch (message) {
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        paint();
        return 0;
    case WM_PRINTCLIENT:
        print(reinterpret_cast<HDC>(detail));
        return 0;
    case WM_LBUTTONDOWN:
        press(0, place);
        return 0;
    case WM_LBUTTONDBLCLK:
        press(kDoubleClick, place);
        return 0;
    case WM_LBUTTONUP:
        release(place);
        return 0;
    case WM_MOUSEMOVE:
        listener.onMouseMoved(point_of(place), keys_held());
        return 0;
    case WM_MOUSEWHEEL:
        return wheel(detail, place);
    case WM_CAPTURECHANGED:
        if (std::exchange(pressed, false))
            listener.onMouseLost();
        return 0;
    case WM_DESTROY:
        SetWindowLongPtrW(std::exchange(window, nullptr), GWLP_USERDATA, 0);
        listener.onMouseLost();
        return 0;
    default:
        return DefWindowProcW(window, message, detail, place);
    }
}

void Win32Window::paint() {
    PAINTSTRUCT damage;
    BeginPaint(window, &damage);
    EndPaint(window, &damage);
    const RECT& area = damage.rcPaint;
    listener.onExpose({static_cast<int>(area.left), static_cast<int>(area.top),
                       static_cast<int>(area.right), static_cast<int>(area.bottom)});
}

/// Somebody asks for a picture of the window.
void Win32Window::print(HDC surface) {
    listener.onExpose({}); // for what changed since it was drawn last
    draw(surface, picture.bounds());
}

void Win32Window::press(int clicks, LPARAM place) {
    pressed = false; // the window may still have the mouse, and taking it again is no loss
    SetCapture(window);
    pressed = true;
    listener.onMouseDown(point_of(place), kLButton | clicks | keys_held());
}

void Win32Window::release(LPARAM place) {
    pressed = false;
    ReleaseCapture();
    listener.onMouseUp(point_of(place), kLButton | keys_held());
}

/// The wheel's place is on the screen. A turn that nobody takes here goes on to the parent.
LRESULT Win32Window::wheel(WPARAM detail, LPARAM place) {
    const HWND receiver = window; // survives this object
    POINT where{GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    ScreenToClient(receiver, &where);
    const float notches = static_cast<float>(GET_WHEEL_DELTA_WPARAM(detail)) / WHEEL_DELTA;
    if (listener.onMouseWheel({static_cast<int>(where.x), static_cast<int>(where.y)}, notches,
                              keys_held()))
        return 0;
    return DefWindowProcW(receiver, WM_MOUSEWHEEL, detail, place);
}

} // namespace

std::unique_ptr<PlatformWindow> open_platform_window(void* parent, const CDrawContext& picture,
                                                     PlatformWindowListener& listener) {
    auto window = std::make_unique<Win32Window>(picture, listener);
    if (!window->create(static_cast<HWND>(parent)))
        return nullptr;
    return window;
}
