#include "picture/png_file.h"

#include <cerrno>
#include <png.h>

namespace {

picture enlarged(const picture& shown, int scale) {
    picture large{shown.width * scale, shown.height * scale, {}};
    const auto step = static_cast<std::size_t>(scale);
    const auto row_bytes = static_cast<std::size_t>(shown.width) * 3;
    large.pixels.reserve(shown.pixels.size() * step * step);
    for (std::size_t row = 0; row < shown.pixels.size(); row += row_bytes)
        for (std::size_t i = 0; i < step; ++i)
            for (std::size_t x = row; x < row + row_bytes; x += 3)
                for (std::size_t j = 0; j < step; ++j)
                    large.pixels.insert(large.pixels.end(), &shown.pixels[x], &shown.pixels[x] + 3);
    return large;
}

} // namespace

void png_file_write(output_file& output, const picture& shown, int scale) {
    const picture large = enlarged(shown, scale);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(large.width);
    image.height = static_cast<png_uint_32>(large.height);
    image.format = PNG_FORMAT_RGB;
    errno = 0;
    if (!png_image_write_to_stdio(&image, output.stream(), 0, large.pixels.data(), 0, nullptr))
        output.fail(errno ? errno : EIO);
    output.finish();
}
