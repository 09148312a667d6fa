#include "vstgui/packed_pixels.h"

#include <algorithm>
#include <zlib.h>

namespace {

/// Adds to each value what it was guessed to be from those to the left, below and between them, by
/// the median edge detector of LOCO-I. Beyond the edges all is 0.
void add_guesses(std::span<unsigned char> plane, std::size_t nb_columns) {
    const std::vector<unsigned char> edge(nb_columns);
    std::span<const unsigned char> below = edge;
    for (std::size_t start = 0; start < plane.size(); start += nb_columns) {
        const auto row = plane.subspan(start, nb_columns);
        int left = 0, between = 0;
        for (std::size_t x = 0; x < nb_columns; ++x) {
            const int under = below[x];
            const int guess =
                std::clamp(left + under - between, std::min(left, under), std::max(left, under));
            left = row[x] = static_cast<unsigned char>(row[x] + guess);
            between = under;
        }
        below = row;
    }
}

} // namespace

std::vector<unsigned char> unpack_pixels(std::span<const unsigned char> packed,
                                         std::size_t nb_columns, std::size_t nb_rows,
                                         std::size_t stride) {
    const std::size_t nb_pixels = nb_columns * nb_rows;
    std::vector<unsigned char> planes(3 * nb_pixels);
    auto nb_bytes = static_cast<uLongf>(planes.size());
    const auto nb_packed = static_cast<uLong>(packed.size());
    if (uncompress(planes.data(), &nb_bytes, packed.data(), nb_packed) != Z_OK
        || nb_bytes != planes.size())
        return {};
    const auto green = std::span(planes).first(nb_pixels); // which the others differ from
    const auto blue = std::span(planes).subspan(nb_pixels, nb_pixels);
    const auto red = std::span(planes).last(nb_pixels);
    for (const auto plane : {green, blue, red})
        add_guesses(plane, nb_columns);

    std::vector<unsigned char> pixels(stride * nb_rows);
    for (std::size_t y = 0; y < nb_rows; ++y) {
        unsigned char* to = pixels.data() + y * stride;
        for (std::size_t i = y * nb_columns; i < (y + 1) * nb_columns; ++i) {
            *to++ = static_cast<unsigned char>(blue[i] + green[i]);
            *to++ = green[i];
            *to++ = static_cast<unsigned char>(red[i] + green[i]);
        }
    }
    return pixels;
}
