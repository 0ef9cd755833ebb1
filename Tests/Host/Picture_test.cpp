// Compares the reference host's picture of a fixed scene with the one in
// Tests/Host/Pictures. If the scene is meant to change, check the new picture
// by eye and copy it there.
#include "World.h"

#include <cstdlib>
#include <filesystem>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#include <stb/stb_image.h>

namespace {

struct Picture {
    explicit Picture(const std::string &file) : pixels(stbi_load(file.c_str(), &width, &height, nullptr, 3)) {}
    ~Picture() { stbi_image_free(pixels); }

    int width = 0;
    int height = 0;
    unsigned char *pixels;
};

TEST(Picture, AKnownSceneLooksAsItDid) {
    World world;
    world.InstallDefective("Resources/plugins/Scene/lin.avp", "Scene");
    const std::string taken = AVSK_TEST_PICTURES_OUT "/scene.png";
    std::filesystem::create_directories(AVSK_TEST_PICTURES_OUT);
    std::filesystem::remove(taken);
    const std::string run = std::string("'" AVSK_TEST_HOST "' run --frames 3 --quiet --root '") + world.Path("") +
                            "' --screenshot '" + taken + "' > /dev/null";
    ASSERT_EQ(std::system(run.c_str()), 0) << run;

    const Picture kept(AVSK_TEST_PICTURES "/scene.png");
    const Picture now(taken);
    ASSERT_NE(kept.pixels, nullptr) << "no picture kept at " AVSK_TEST_PICTURES "/scene.png";
    ASSERT_NE(now.pixels, nullptr) << "no picture was taken: " << run;
    ASSERT_EQ(now.width, kept.width);
    ASSERT_EQ(now.height, kept.height);
    // Other font versions render edges slightly differently. The host draws the
    // bar at the bottom, which shows flight data; it is not compared.
    constexpr int kBar = 24;
    constexpr int kAllowed = 100;
    const int count = kept.width * (kept.height - kBar) * 3;
    int different = 0;
    for (int i = 0; i < count; ++i)
        different += std::abs(kept.pixels[i] - now.pixels[i]) > 48;
    EXPECT_LE(different, kAllowed) << "compare " << taken << " with " AVSK_TEST_PICTURES "/scene.png";
}

} // namespace
