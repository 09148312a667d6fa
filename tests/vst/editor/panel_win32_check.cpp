/// Opens the panel of a built library on Windows and plays on it: panel_win32_check LIBRARY. Stands
/// on the host's side of the binary interface; says what fails, and returns how much did.

#include "tests/vst/editor/panel_picture.h"
#include "vst/interface.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>
#include <windows.h>

namespace {

int nb_failures = 0;

void expect(bool holds, const std::string& what) {
    if (holds)
        return;
    ++nb_failures;
    std::printf("FAIL %s\n", what.c_str());
}

std::string gestures; ///< "b6 s6 e6 " begins, sets and ends one

VstIntPtr VSTCALLBACK host_callback(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*,
                                    float) {
    if (opcode == audioMasterVersion)
        return kVstVersion;
    const char* letter = opcode == audioMasterBeginEdit  ? "b"
                         : opcode == audioMasterAutomate ? "s"
                         : opcode == audioMasterEndEdit  ? "e"
                                                         : nullptr;
    if (letter)
        gestures += letter + std::to_string(index) + " ";
    return 0;
}

struct instrument {
    explicit instrument(HMODULE library) {
        const auto entry = reinterpret_cast<VstPluginMainProc>(
            reinterpret_cast<void*>(GetProcAddress(library, "main")));
        record = entry ? entry(host_callback) : nullptr;
    }

    VstIntPtr ask(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr) {
        return record->dispatcher(record, opcode, index, value, ptr, 0);
    }

    [[nodiscard]] panel_state state() const {
        panel_state shown{};
        for (std::size_t i = 0; i < shown.values.size(); ++i)
            shown.values[i] = record->getParameter(record, static_cast<VstInt32>(i));
        return shown;
    }

    AEffect* record;
};

void pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

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

void mouse(HWND window, UINT message, int x, int y, WPARAM keys = 0) {
    SendMessageW(window, message, keys, MAKELPARAM(x, y));
}

void shows_every_value(instrument& organ, HWND panel) {
    for (VstInt32 index = 0; index < 9; ++index)
        for (int step = 0; step <= 32; ++step) {
            organ.record->setParameter(organ.record, index, static_cast<float>(step) / 32);
            organ.ask(effEditIdle);
            const std::string difference =
                first_difference(picture(panel), panel_picture(organ.state()));
            expect(difference.empty(), "parameter " + std::to_string(index) + ": " + difference);
        }
}

void plays(instrument& organ, HWND panel) {
    organ.record->setParameter(organ.record, 6, 0.5f);
    organ.ask(effEditIdle);
    gestures.clear();
    mouse(panel, WM_LBUTTONDOWN, 367, 285);
    expect(GetCapture() == panel, "a drag keeps the mouse");
    mouse(panel, WM_MOUSEMOVE, 900, 299);
    mouse(panel, WM_LBUTTONUP, 900, 299);
    expect(gestures == "b6 s6 e6 ", "a drag: " + gestures);
    const float turned = organ.record->getParameter(organ.record, 6);
    expect(turned > 0.75f && turned < 0.85f, "a quarter turn gives " + std::to_string(turned));
    gestures.clear();
    mouse(panel, WM_LBUTTONDBLCLK, 367, 285);
    mouse(panel, WM_LBUTTONUP, 367, 285);
    expect(gestures == "b6 s6 e6 ", "a double click: " + gestures);
    expect(organ.record->getParameter(organ.record, 6) == 0.5f, "a double click's value");
    gestures.clear();
    POINT knob{367, 299};
    ClientToScreen(panel, &knob);
    mouse(panel, WM_MOUSEWHEEL, knob.x, knob.y, MAKEWPARAM(0, WHEEL_DELTA));
    expect(gestures == "b6 s6 e6 ", "the wheel: " + gestures);
    gestures.clear();
    mouse(panel, WM_LBUTTONDOWN, 212, 176);
    mouse(panel, WM_LBUTTONUP, 212, 176);
    expect(gestures == "b0 s0 e0 ", "a switch: " + gestures);
    gestures.clear();
    mouse(panel, WM_LBUTTONDOWN, 367, 285);
    SetCapture(GetParent(panel));
    ReleaseCapture();
    expect(gestures == "b6 e6 ", "a lost mouse: " + gestures);
    RECT all{0, 0, 480, 400};
    InvalidateRect(panel, &all, TRUE);
    organ.ask(effEditIdle);
    pump();
    expect(first_difference(picture(panel), panel_picture(organ.state())).empty(), "repainted");
}

void leaves_nothing(instrument& organ, HWND parent) {
    const auto nb_objects = [] {
        return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)
               + GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    };
    const DWORD before = nb_objects();
    for (int i = 0; i < 1000; ++i) {
        expect(organ.ask(effEditOpen, 0, 0, parent) == 1, "opened again");
        organ.ask(effEditIdle);
        organ.ask(effEditClose);
    }
    expect(nb_objects() == before, "objects left");
    expect(GetWindow(parent, GW_CHILD) == nullptr, "a window left");
}

} // namespace

int main(int, char** arguments) {
    HMODULE library = LoadLibraryA(arguments[1]);
    if (!library) {
        std::printf("%s cannot be loaded: error %lu\n", arguments[1], GetLastError());
        return 1;
    }
    HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 20, 20, 480, 400,
                                  nullptr, nullptr, nullptr, nullptr);
    HWND focus = GetFocus();
    {
        instrument organ(library), other(library);
        expect(organ.ask(effEditOpen, 0, 0, reinterpret_cast<void*>(0x12)) == 0, "no parent");
        expect(organ.ask(effEditOpen, 0, 0, parent) == 1, "opens");
        HWND panel = GetWindow(parent, GW_CHILD);
        pump();
        organ.ask(effEditIdle);
        shows_every_value(organ, panel);
        plays(organ, panel);
        expect(GetFocus() == focus, "the keyboard was taken");
        expect(other.ask(effEditOpen, 0, 0, parent) == 1, "a second opens");
        organ.ask(effEditClose);
        other.ask(effEditClose);
        leaves_nothing(organ, parent);
        WNDCLASSW kind;
        expect(!GetClassInfoW(library, L"vstgui frame", &kind), "a window class left");
        expect(organ.ask(effEditOpen, 0, 0, parent) == 1, "opens for the last time");
        DestroyWindow(parent);
        organ.ask(effEditIdle);
        organ.ask(effEditClose);
        organ.ask(effClose);
        other.ask(effClose);
    }
    expect(FreeLibrary(library) != 0, "unloaded");
    std::printf("panel: %d failures\n", nb_failures);
    return nb_failures;
}
