// The calls that hand every argument to a service of the host, as it is.
#include "World.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKGraphics.h"

#include <gtest/gtest.h>

namespace {

TEST(Graphics, EveryForwarderPassesItsArgumentsUnchanged) {
    World world;
    world.StartQuietly();
    static int ints[3];
    static double doubles[3];
    static float colour[3];
    static char text[] = "t";
    FakeHost &host = Host();
    for (int i = 0; i < 3; ++i) {
        host.names[&ints[i]] = "int" + std::to_string(i);
        host.names[&doubles[i]] = "double" + std::to_string(i);
    }
    host.names[colour] = "colour";
    host.names[text] = "text";
    host.on.getTexture = [](int) { return 77; };
    host.on.measureString = [](int, const char *, int) { return 2.5F; };
    const struct {
        void (*call)();
        const char *slot;
    } cases[] = {
        {[] { AVSKGetScreenSize(&ints[0], &ints[1]); }, "getScreenSize(int0, int1)"},
        {[] { AVSKGetScreenSize(nullptr, nullptr); }, "getScreenSize(null, null)"},
        {[] { AVSKGetMouseLocation(&ints[0], &ints[1]); }, "getMouseLocation(int0, int1, 1)"},
        {[] { AVSKSetGraphicsState(1, 2, 3, 4, 5, 6, -7); }, "setGraphicsState(1, 2, 3, 4, 5, 6, -7)"},
        {[] { AVSKBindTexture2d(1, 2); }, "bindTexture2d(1, 2)"},
        {[] { AVSKGenerateTextureNumbers(&ints[2], 3); }, "generateTextureNumbers(int2, 3)"},
        {[] { EXPECT_EQ(AVSKGetTexture(5), 77); }, "getTexture(5)"},
        {[] { AVSKWorldToLocal(1.5, 2.5, 3.5, &doubles[0], &doubles[1], &doubles[2]); },
         "worldToLocal(1.5, 2.5, 3.5, double0, double1, double2)"},
        {[] { AVSKLocalToWorld(1.5, 2.5, 3.5, &doubles[2], &doubles[1], &doubles[0]); },
         "localToWorld(1.5, 2.5, 3.5, double2, double1, double0)"},
        {[] { AVSKDrawTranslucentDarkBox(1, 4, 3, 2); }, "drawTranslucentDarkBox(1, 4, 3, 2)"},
        {[] { AVSKDrawString(colour, 1, 2, text, &ints[0], 3); }, "drawString(colour, 1, 2, text, int0, 3)"},
        {[] { AVSKDrawString(colour, 1, 2, text, nullptr, 3); }, "drawString(colour, 1, 2, text, null, 3)"},
        {[] { AVSKDrawNumber(colour, 1, 2, -3.25, 4, 5, 6, 7); }, "drawNumber(colour, 1, 2, -3.25, 4, 5, 6, 7)"},
        {[] { AVSKGetFontDimensions(1, &ints[0], &ints[1], &ints[2]); }, "getFontDimensions(1, int0, int1, int2)"},
        {[] { AVSKGetFontDimensions(1, nullptr, nullptr, nullptr); }, "getFontDimensions(1, null, null, null)"},
        {[] { EXPECT_EQ(AVSKMeasureString(1, "text", 4), 2.5F); }, "measureString(1, \"text\", 4)"},
    };
    for (const auto &each : cases) {
        each.call();
        EXPECT_EQ(Take(), Lines{each.slot});
    }
}

} // namespace
