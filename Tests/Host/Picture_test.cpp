// 'expect picture': what it finds, writes and refuses. The picture of a fixed scene in
// Tests/Host/Pictures also shows that drawing stays as it is. If the scene is meant to
// change, take its picture with --accept, look at it, and copy it there.
#include "RunAvsk.h"
#include "World.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct PictureTest : testing::Test {
    World world;

    PictureTest() {
        world.InstallDefective("Resources/plugins/Scene/lin.avp", "Scene");
        fs::copy_file(AVSK_TEST_PICTURES "/scene.png", world.Path("scene.png"));
    }

    // Expects this status of a session with these lines, and these words in what it says.
    void Expect(int status, const std::string &lines, const std::string &words = "", const std::string &options = "",
                const std::string &environment = "") {
        std::ofstream(world.Path("s.avs")) << lines;
        const AvskRun run =
            RunAvsk("run --quiet --root " + world.Path("") + " " + world.Path("s.avs") + options, environment);
        EXPECT_EQ(run.status, status) << lines << run.said;
        EXPECT_NE(run.said.find(words), std::string::npos) << words << "\n" << run.said;
    }
    bool Exists(const std::string &file) const { return fs::exists(world.Path(file)); }
};

TEST_F(PictureTest, AKnownSceneLooksAsItDidInAnyFrame) {
    Expect(0, "frames 2\nexpect picture scene.png\nframes 70\nexpect picture scene.png 48\n");
}

TEST_F(PictureTest, WhatDiffersIsCountedAndShownUntilItIsAccepted) {
    // The window in front is 350 x 200; what it covers is much darker than the sky.
    const std::string hidden = "hide Scene 2\nexpect no picture scene.png\nexpect picture scene.png";
    Expect(0, hidden + " 60,15%\n");
    Expect(0, hidden + " 255,0%\n");
    EXPECT_FALSE(Exists("scene.actual.png"));
    Expect(1, hidden + " 8,0.5%\n", "the greatest difference is ");
    Expect(0, "hide Scene 2\nexpect picture scene.actual.png 0,0%\nexpect no picture scene.difference.png 8,0.5%\n");
    Expect(0, hidden + "\n", "scene.png was written", " --accept");
    EXPECT_FALSE(Exists("scene.actual.png") || Exists("scene.difference.png"));
    Expect(1, hidden + "\n",
           ":2: frame 1: expect no picture scene.png: seen: 0 pixels (0.000%) differ by more than 48");
    Expect(0, "hide Scene 2\nscreenshot " + world.Path("shot.png") + "\nexpect picture scene.png 0,6%\n");
}

TEST_F(PictureTest, OpenGLAndTheLibraryDrawInTheOrderOfTheirCalls) {
    world.InstallDefective("Resources/plugins/Layers/lin.avp", "Layers");
    fs::copy_file(AVSK_TEST_PICTURES "/layers.png", world.Path("layers.png"));
    const std::string session = "plugin Layers\nscreen 400x300\nexpect log \"textures 5 and 6\"\n"
                                "expect log \"textures 7 and 8\"\nexpect picture layers.png 48,0.2%\n";
    const std::string without = "AVSK_OPENGL_FOLDER=/nonexistent";
    const std::string missing = "expect picture layers.png 48,0.2%: seen: OpenGL draws nothing: ";
    Expect(1, session, missing, "", without);
    Expect(1, session, missing, " --accept", without);
    const AvskRun run = RunAvsk("run --frames 1 --plugin Layers --root " + world.Path(""));
    if (const std::size_t why = run.said.find("OpenGL draws nothing"); why != std::string::npos)
        GTEST_SKIP() << run.said.substr(why, run.said.find('\n', why) - why);
    Expect(0, session + "frames 9\nexpect picture layers.png 48,0.2%\n");
}

TEST_F(PictureTest, WhatCannotBeComparedIsRefusedInOneLine) {
    const fs::path half = world.Path("half.png");
    fs::copy_file(world.Path("scene.png"), half);
    fs::resize_file(half, 5000);
    std::ofstream(world.Path("empty.png"));
    fs::create_directory(world.Path("folder.png"));
    const Table<int, std::string, std::string> kRefused{
        {1, "expect picture missing.png", "missing.png': --accept writes what is shown now"},
        {1, "expect no picture missing.png", "missing.png': --accept"},
        {1, "expect no picture half.png", "half.png' is not a complete PNG file"},
        {1, "expect picture empty.png", "empty.png' is not a complete PNG file"},
        {1, "expect picture folder.png", "folder.png' (Is a directory)"},
        {1, "screen 640x480\nexpect picture scene.png", "the screen is 640x480, the picture 1024x768: see "},
        {2, "expect picture scene", ":1:16: expected a .png file, found 'scene'"},
        {2, "expect picture scene.png 256", "found '256'"},
        {2, "expect picture scene.png 8,1", "found '8,1'"},
        {2, "expect picture scene.png 8,101%", "found '8,101%'"},
    };
    for (const auto &[status, line, words] : kRefused)
        Expect(status, line + "\n", words);
    Expect(1, "expect picture folder.png\n", "cannot write the picture", " --accept");
    Expect(1, "expect picture no/scene.png\n", "cannot write the picture", " --accept");
    Expect(2, "expect picture scene.png\n", "--watch: --accept belongs to a single run", " --accept --watch");
}

} // namespace
