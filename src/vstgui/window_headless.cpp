#include "vstgui/window_headless.h"

#include <algorithm>
#include <cstddef>

namespace {

/// A panel may open while the one before it is still closing.
class HeadlessWindow final : public PlatformWindow {
public:
    HeadlessWindow(headless_parent& host, const CDrawContext& shown,
                   PlatformWindowListener& listener)
        : parent(host), picture(shown), told(&listener) {
        parent.listener = told;
    }
    ~HeadlessWindow() override {
        if (parent.listener == told)
            parent.listener = nullptr;
    }

    void* getHandle() override { return this; }

    void put(const CRect& area) override {
        parent.puts.push_back(area);
        const CRect shown = area.intersection(picture.bounds());
        const auto left = static_cast<std::size_t>(shown.left);
        const auto width = static_cast<std::size_t>(shown.width());
        for (int y = shown.top; y < shown.bottom; ++y)
            std::ranges::copy(picture.row(y).subspan(left, width),
                              parent.screen.row(y).begin() + shown.left);
    }

    void handleEvents() override {
        if (const auto happens = parent.at_events) // which may change what happens next
            happens();
    }

private:
    headless_parent& parent;
    const CDrawContext& picture;
    PlatformWindowListener* told;
};

} // namespace

std::unique_ptr<PlatformWindow> open_platform_window(void* parent, const CDrawContext& picture,
                                                     PlatformWindowListener& listener) {
    auto* host = static_cast<headless_parent*>(parent);
    return !host || host->refuses ? nullptr
                                  : std::make_unique<HeadlessWindow>(*host, picture, listener);
}
