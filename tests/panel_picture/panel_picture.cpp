#include "tests/panel_picture/panel_picture.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace {

struct picture_file {
    explicit picture_file(int number) {
        std::ifstream file(std::string(TINDELWAX_BITMAPS "/") + std::to_string(number) + ".bmp",
                           std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
        if (bytes.size() < 54)
            throw std::runtime_error("no bitmap " + std::to_string(number));
        width = bytes[18] | bytes[19] << 8;
        height = bytes[22] | bytes[23] << 8;
    }

    [[nodiscard]] std::uint32_t pixel(int x, int y) const {
        const int row_bytes = (width * 3 + 3) & ~3;
        const auto at = static_cast<std::size_t>(54 + (height - 1 - y) * row_bytes + x * 3);
        return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16);
    }

    std::vector<unsigned char> bytes{};
    int width, height;
};

const picture_file& file_of(int number) {
    static std::map<int, picture_file> files;
    return files.try_emplace(number, number).first->second;
}

void lay(CDrawContext& panel, int number, int left, int top, int picture, int picture_height) {
    const picture_file& file = file_of(number);
    for (int y = 0; y < picture_height; ++y)
        for (int x = 0; x < file.width; ++x)
            panel.row(top + y)[static_cast<std::size_t>(left + x)] =
                file.pixel(x, picture * picture_height + y);
}

CDrawContext background() {
    CDrawContext panel(480, 400);
    lay(panel, 128, 0, 0, 0, 400);
    return panel;
}

int furthest_channel(std::uint32_t a, std::uint32_t b) {
    int furthest = 0;
    for (const int shift : {0, 8, 16})
        furthest = std::max(furthest, std::abs(static_cast<int>(a >> shift & 0xFF)
                                               - static_cast<int>(b >> shift & 0xFF)));
    return furthest;
}

} // namespace

CDrawContext panel_picture(const panel_state& state) {
    struct place {
        std::size_t index;
        int number, left, top;
    };
    static const CDrawContext behind = background();
    CDrawContext panel = behind;
    for (const auto& [index, number, left, top] :
         {place{8, 150, 216, 274}, {7, 151, 90, 274}, {6, 152, 341, 274}})
        lay(panel, number, left, top, static_cast<int>(state.values[index] * 31), 51);
    for (const auto& [index, number, left, top] : {place{4, 153, 71, 112},
                                                   {5, 154, 128, 112},
                                                   {0, 155, 184, 112},
                                                   {1, 156, 240, 112},
                                                   {2, 157, 297, 112},
                                                   {3, 158, 353, 112}})
        lay(panel, number, left, top, state.values[index] >= 0.5f ? 1 : 0, 128);
    lay(panel, 129, 306, 11, state.learn, 36);
    lay(panel, 130, 351, 11, state.lamp, 36);
    lay(panel, 132, 398, 11, state.panic, 36);
    return panel;
}

CDrawContext reduced(const CDrawContext& shown, int divisor) {
    if (divisor == 1)
        return shown;
    CDrawContext small(shown.bounds().width() / divisor, shown.bounds().height() / divisor);
    const auto step = static_cast<std::size_t>(divisor);
    const auto area = static_cast<std::uint32_t>(divisor * divisor);
    for (int y = 0; y < small.bounds().height(); ++y)
        for (std::size_t x = 0; x < small.row(y).size(); ++x)
            for (const int shift : {0, 8, 16}) {
                std::uint32_t sum = area / 2;
                for (int row = divisor * y; row < divisor * (y + 1); ++row)
                    for (const std::uint32_t pixel : shown.row(row).subspan(step * x, step))
                        sum += pixel >> shift & 0xFF;
                small.row(y)[x] |= sum / area << shift;
            }
    return small;
}

std::string first_difference(const CDrawContext& shown, const CDrawContext& expected,
                             int tolerance) {
    for (int y = 0; y < 400; ++y) {
        const auto row = shown.row(y), wanted = expected.row(y);
        if (std::memcmp(row.data(), wanted.data(), wanted.size_bytes()) == 0)
            continue;
        for (std::size_t x = 0; x < 480; ++x)
            if (furthest_channel(row[x], wanted[x]) > tolerance) {
                std::ostringstream text;
                text << "at " << x << ", " << y << ": " << std::hex << row[x] << " instead of "
                     << wanted[x];
                return text.str();
            }
    }
    return "";
}

namespace {

CDrawContext drawing(const picture& shown) {
    CDrawContext drawn(shown.width, shown.height);
    const std::uint8_t* bytes = shown.pixels.data();
    for (int y = 0; !shown.pixels.empty() && y < shown.height; ++y)
        for (std::uint32_t& pixel : drawn.row(y)) {
            pixel = static_cast<std::uint32_t>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]);
            bytes += 3;
        }
    return drawn;
}

} // namespace

std::string shown_difference(const editor_window& window, const CDrawContext& expected,
                             int tolerance, int scale) {
    constexpr int nb_chances = 100;
    const auto differs = [&] {
        return first_difference(reduced(drawing(window.take()), scale), expected, tolerance);
    };
    tolerance += scale > 1; // means are rounded
    std::string difference = differs();
    for (int i = 0; i < nb_chances && !difference.empty(); ++i)
        difference = differs();
    return difference;
}
