#include "picture/png_file.h"

#include "failure/failure.h"
#include "tests/host/picture_content.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace {

TEST(PngFile, EveryPixelBecomesASharpSquare) {
    const temporary_folder folder;
    picture shown{3, 2, {}};
    for (int i = 0; i < 18; ++i)
        shown.pixels.push_back(static_cast<std::uint8_t>(i * 14));
    for (const int scale : {1, 2, 5}) {
        output_file output{std::filesystem::path{folder / "a.png"}};
        png_file_write(output, shown, scale);
        const picture read = picture_content(folder / "a.png");
        ASSERT_EQ(read.width, 3 * scale);
        ASSERT_EQ(read.height, 2 * scale);
        for (int y = 0; y < read.height; ++y)
            for (int x = 0; x < read.width; ++x)
                ASSERT_EQ(colour_at(read, x, y), colour_at(shown, x / scale, y / scale))
                    << "scale " << scale << ", pixel " << x << ", " << y;
    }
}

TEST(PngFile, AFullDiskIsTold) {
    output_file output{std::filesystem::path{"/dev/full"}};
    try {
        png_file_write(output, {1, 1, {1, 2, 3}}, 1);
        ADD_FAILURE() << "it claims to have written";
    } catch (const failure& end) {
        EXPECT_EQ(std::string{end.what()}.find("cannot write /dev/full: No space left"), 0u)
            << end.what();
    }
}

} // namespace
