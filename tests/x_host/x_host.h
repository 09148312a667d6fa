#pragma once
/// A display of the test's own and a host with a window on it, whose user has real hands: the
/// server makes the events.

#include "vstgui/cdrawcontext.h"

#include <csignal>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <xcb/xcb.h>

/// Xvfb, and this process's DISPLAY, until it is stopped.
class XServer {
public:
    explicit XServer(int depth = 24);
    ~XServer() { stop(); }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    void signal(int number) const { kill(pid, number); }
    void stop(int signal = SIGTERM); ///< with SIGKILL it tells no client

private:
    pid_t pid = 0;
};

class XHost {
public:
    XHost();
    ~XHost();
    XHost(const XHost&) = delete;
    XHost& operator=(const XHost&) = delete;

    /// Returns what effEditOpen gets: a window of 480 by 400, of the screen's depth or transparent.
    void* makeWindow(CPoint corner, bool transparent = false);
    void destroyWindow(void* window);

    /// Hides or shows a window, or just what is in it.
    void show(void* window, bool whole, bool shown);

    /// Takes pictures of the window, with what is in it, for as long as clients may still be heard
    /// by the server. Returns "" once one shows what is expected, else where the last one differs.
    [[nodiscard]] std::string waitFor(void* window, const CDrawContext& expected,
                                      int tolerance = 0);
    [[nodiscard]] unsigned nbChildren(void* window);

    void takeKeys(void* window);
    [[nodiscard]] int nextKey(); ///< the code of the key that reached that window; 0 for none

    void move(CPoint onScreen);
    void button(int number, bool down);
    void key(std::uint8_t keycode, bool down);
    void sync();

private:
    [[nodiscard]] CDrawContext picture(void* window);
    void fake(std::uint8_t type, std::uint8_t detail, CPoint where);

    xcb_connection_t* connection;
    xcb_screen_t* screen;
};
