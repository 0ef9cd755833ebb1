// Libraries, symbols, folders and the two text functions.
#include "AVSKPlatform.h"
#include "World.h"

#include <algorithm>
#include <fstream>

#include <unistd.h>

namespace {

class Platform : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();

    void SetUp() override { world.StartQuietly(); }

    Lines Contents(const std::string &folder, const char *pattern) const {
        Lines names;
        AVSKFetchDirectoryContents(world.Path(folder).c_str(), pattern, names);
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Platform, AFolderIsListedByPattern) {
    for (const char *folder : {"f/sub", "f/my.dir", "f/x.avp"})
        world.MakeFolder(folder);
    for (const char *file : {"f/a.avp", "f/B.AVP", "f/.hidden", "f/file.DIR"})
        std::ofstream(world.Path(file)) << "x";
    EXPECT_EQ(Contents("f", "*.avp"), (Lines{"B.AVP", "a.avp", "x.avp"}));
    ASSERT_EQ(symlink("nowhere", world.Path("f/dangling").c_str()), 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Contents("f", "DIR"), (Lines{"file.DIR", "my.dir", "my.dir", "sub", "x.avp"}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "name dangling, errno 2\n");
    EXPECT_EQ(Contents("nowhere", "*.*"), Lines());
}

} // namespace
