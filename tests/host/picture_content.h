#pragma once
/// What is in a PNG file.

#include "platform/editor_window.h"

#include <png.h>
#include <string>

/// Without pixels if it cannot be read.
inline picture picture_content(const std::string& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, file.c_str()))
        return {};
    image.format = PNG_FORMAT_RGB;
    picture read{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    read.pixels.resize(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, read.pixels.data(), 0, nullptr);
    return read;
}

inline unsigned colour_at(const picture& shown, int x, int y) {
    const auto* pixel = &shown.pixels.at(static_cast<std::size_t>((y * shown.width + x) * 3));
    return static_cast<unsigned>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
}
