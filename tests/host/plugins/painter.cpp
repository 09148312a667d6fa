// A plug-in for tests whose editor paints, or misbehaves as TINDELWAX_TEST_EDITOR says.

#include "vst/interface.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <xcb/xcb.h>

namespace {

constexpr VstInt16 width = 40, height = 30;
constexpr int idle_turns_to_paint = 3;

struct rgb {
    std::uint16_t red, green, blue;
};

struct painter {
    AEffect effect{};
    ERect rect{0, 0, height, width};
    std::string mood{};
    float is_green = 0;
    int nb_turns = 0;
    xcb_connection_t* connection = nullptr; // while the editor is open
    xcb_window_t window = XCB_NONE;
    xcb_gcontext_t gc = XCB_NONE;
};

painter& self(AEffect* effect) { return *static_cast<painter*>(effect->object); }

VstIntPtr tell_rect(painter& p, void* ptr) {
    const bool knows = p.mood != "tells no size" && (p.mood != "grows" || p.connection);
    if (knows)
        *static_cast<ERect**>(ptr) = &p.rect;
    return knows;
}

VstIntPtr open(painter& p, void* parent) {
    if (p.mood == "refuses")
        return 0;
    if (p.mood == "aborts")
        std::abort();
    if (p.mood == "is too large")
        p.rect.right = 20000;
    p.connection = xcb_connect(nullptr, nullptr);
    p.window = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(parent));
    p.gc = xcb_generate_id(p.connection);
    xcb_create_gc(p.connection, p.gc, p.window, 0, nullptr);
    xcb_flush(p.connection);
    return 1;
}

void fill(painter& p, rgb colour, xcb_rectangle_t where) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(p.connection)).data;
    const auto request = xcb_alloc_color(p.connection, screen->default_colormap, colour.red,
                                         colour.green, colour.blue);
    xcb_alloc_color_reply_t* allocated = xcb_alloc_color_reply(p.connection, request, nullptr);
    xcb_change_gc(p.connection, p.gc, XCB_GC_FOREGROUND, &allocated->pixel);
    xcb_poly_fill_rectangle(p.connection, p.window, p.gc, 1, &where);
    std::free(allocated);
}

/// The left half is red; the right one shows the parameter, or turns if the editor is restless.
VstIntPtr paint(painter& p) {
    constexpr std::uint16_t full = 0xFFFF;
    if (++p.nb_turns < idle_turns_to_paint)
        return 0;
    const bool turns = p.mood == "is restless" && p.nb_turns % 2 != 0;
    fill(p, {full, 0, 0}, {0, 0, width / 2, height});
    fill(p, p.is_green > 0.5f || turns ? rgb{0, full, 0} : rgb{0, 0, full},
         {width / 2, 0, width / 2, height});
    xcb_flush(p.connection);
    return 0;
}

/// A test sees by this file that the editor was closed, and how often.
VstIntPtr close(painter& p) {
    xcb_disconnect(std::exchange(p.connection, nullptr));
    if (const char* log_name = std::getenv("TINDELWAX_TEST_LOG")) {
        std::FILE* p_log = std::fopen(log_name, "a");
        std::fputs("closed\n", p_log);
        std::fclose(p_log);
    }
    return 0;
}

VstIntPtr VSTCALLBACK dispatch(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr, void* ptr,
                               float) {
    painter& p = self(effect);
    // A table, one row an opcode.
    // clang-format off
    switch (opcode) {
    case effEditGetRect: return tell_rect(p, ptr);
    case effEditOpen: return open(p, ptr);
    case effEditIdle: return paint(p);
    case effEditClose: return close(p);
    case effGetParamName: std::strcpy(static_cast<char*>(ptr), "Green"); return 1;
    case effClose: delete &p; return 1;
    default: return 0;
    }
    // clang-format on
}

} // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTCALLBACK
VSTPluginMain(audioMasterCallback) {
    auto* p = new painter;
    if (const char* mood = std::getenv("TINDELWAX_TEST_EDITOR"))
        p->mood = mood;
    p->effect.magic = kEffectMagic;
    p->effect.dispatcher = dispatch;
    p->effect.setParameter = [](AEffect* effect, VstInt32, float value) {
        self(effect).is_green = value;
    };
    p->effect.getParameter = [](AEffect* effect, VstInt32) { return self(effect).is_green; };
    p->effect.numParams = 1;
    p->effect.flags = effFlagsHasEditor;
    p->effect.object = p;
    return &p->effect;
}
