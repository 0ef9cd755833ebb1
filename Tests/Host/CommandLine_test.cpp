// What the commands of the reference host answer, to faulty plugins and to
// faulty requests.
#include "RunAvsk.h"
#include "World.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Case {
    const char *claim;
    // Misfits of the zoo, and where they lie in Resources/plugins.
    std::vector<std::pair<const char *, const char *>> plugins;
    std::string arguments; // ROOT stands for the simulator's folder, ZOO for that of the misfits
    int status;
    std::vector<std::string> pieces; // of the output, in order; ROOT as above
};

void PrintTo(const Case &now, std::ostream *out) { *out << now.arguments; }

struct CommandLineTest : testing::TestWithParam<Case> {};

TEST_P(CommandLineTest, Answers) {
    const Case &now = GetParam();
    World world;
    const std::string plugins = "Resources/plugins/";
    world.MakeFolder(plugins);
    for (const auto &[misfit, place] : now.plugins) {
        world.MakeFolder(plugins + fs::path(place).parent_path().string() + "/");
        fs::copy_file(std::string(AVSK_TEST_MISFITS "/") + misfit + ".avp", world.Path(plugins + place));
    }
    const auto filled = [&world](std::string text) {
        const std::string root = fs::canonical(world.Path("")).string();
        for (const auto &[word, value] : {std::pair<std::string, std::string>{"ROOT", root + "/"},
                                          {"ZOO", AVSK_TEST_MISFITS},
                                          {"DEMO", AVSK_TEST_DEMO}}) {
            for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + value.size()))
                text.replace(at, word.size(), value);
        }
        return text;
    };
    const AvskRun run = RunAvsk(filled(now.arguments));
    EXPECT_EQ(run.status, now.status) << run.said;
    std::size_t at = 0;
    for (const std::string &piece : now.pieces) {
        at = run.said.find(filled(piece), at);
        ASSERT_NE(at, std::string::npos) << "no '" << filled(piece) << "' in\n" << run.said;
    }
}

const std::string kRun = "run --quiet --frames 1 --root ROOT";
const std::string kNone = "avsk: no plugin was loaded; the lines above say why";

const Case kCases[] = {
    {"AnEmptyFolderWantsAPlugin", {}, kRun, 2, {"avsk: no plugin in 'ROOTResources/plugins': put one there"}},
    {"A64BitFileIsNamed",
     {{"WIDE", "Mine/lin.avp"}},
     kRun,
     2,
     {"avsk: ROOTResources/plugins/Mine/lin.avp: is built for x86-64: compile it with -m32\n", kNone}},
    {"AMisspeltEntryPointIsNamed",
     {{"MISSPELT", "Mine.avp"}},
     kRun,
     2,
     {"Mine.avp: exports AVPluginstart; did you mean AVPluginStart?\n", kNone}},
    {"AMangledEntryPointIsNamed",
     {{"MANGLED", "Mine.avp"}},
     kRun,
     2,
     {"Mine.avp: exports _Z13AVPluginStartPcS_S_ instead of AVPluginStart: declare it extern \"C\""}},
    {"AHiddenEntryPointIsNamed",
     {{"HIDDEN", "Mine.avp"}},
     kRun,
     2,
     {"Mine.avp: does not export AVPluginStart, which is static or has hidden visibility"}},
    {"AMissingFunctionHasANearestName",
     {{"UNDEFINED", "Mine.avp"}},
     kRun,
     2,
     {"Mine.avp: needs AVSKDebugStrin, which nothing exports; did you mean 'AVSKDebugString'?"}},
    {"MisplacedPluginsAreToldTheirPlace",
     {{"GOOD", "Sub/Deep/lin.avp"},
      {"GOOD", "Mine/Mine.avp"},
      {"GOOD", "Other/other.so"},
      {"GOOD", "Right/lin.avp"},
      {"GOOD", "loose.so"}},
     kRun,
     0,
     {"plugins/Mine/Mine.avp: is not loaded from this place: move it to 'ROOTResources/plugins/Mine/lin.avp'\n",
      "plugins/Other/other.so: is not loaded from this place: move it to 'ROOTResources/plugins/Other/lin.avp'\n",
      "plugins/Sub/Deep/lin.avp: is not loaded from this place: move it to 'ROOTResources/plugins/Deep/lin.avp'\n",
      "plugins/loose.so: is not loaded under this name: rename it to 'loose.avp'\n", "1 frames"}},
    {"AnEmptySignatureIsNamed",
     {{"UNSIGNED", "A.avp"}},
     kRun,
     2,
     {"A.avp: was unloaded, since its AVPluginStart left"}},
    {"AnEmptyNameIsNamed", {{"NAMELESS", "A.avp"}}, kRun, 0, {"A.avp: has no name: fill in all three texts"}},
    {"AUsedSignatureIsNamed",
     {{"GOOD", "A.avp"}, {"DISABLED", "B.avp"}},
     kRun,
     0,
     {"B.avp: was unloaded, since its signature 'm' is that of 'ROOTResources/plugins/A.avp': give it"}},
    {"APluginThatStaysDisabledIsNamed",
     {{"DISABLED", "A.avp"}},
     kRun,
     0,
     {"A.avp: stays disabled, since its AVPluginEnable returned 0", " no  "}},
    {"AFaultOfANamedPluginHasItsOwnPath",
     {},
     "run ZOO/HIDDEN.avp",
     2,
     {"avsk: ZOO/HIDDEN.avp: does not export", kNone}},

    {"RunTakesPluginsAsPsDoes",
     {},
     "run --quiet --plugin ZOO/GOOD.avp --frames 2",
     0,
     {"\n2 frames", "1  M       m          yes"}},
    {"ASessionRefusesOptionsThatItSetsItself", {}, "run x.avs --fps 3", 2, {"avsk: --fps: a session says this itself"}},
    {"AWrongCommandHasANearestName", {}, "dataref", 2, {"avsk: no command 'dataref'; did you mean 'datarefs'?"}},
    {"APartOfAFrameIsRefused", {}, "ps --frames 1.5", 2, {"--frames: '1.5' is not a positive whole number"}},
    {"AWrongOptionHasANearestName", {}, "ps --farmes=3", 2, {"ps: no option '--farmes=3'; did you mean '--frames'?"}},

    {"DatarefsHaveTypeValueUnitAndMeaning",
     {},
     "datarefs --frames 90 time",
     0,
     {"name", "meaning\n",
      "sim/time/elapsed  float  read-only  1.5    seconds  simulator  simulated time since the start\n"}},
    {"DatarefsOfPluginsHaveTheirOwner",
     {},
     "datarefs --root DEMO 's*'",
     0,
     {"sample/counter", "int", "writable", "60", "DatarefOwner  -\n", "sim/aircraft/x"}},
    {"AWrongDatarefHasANearestName", {}, "datarefs sim/time/elapse_", 2, {"did you mean 'sim/time/elapsed'?"}},
    {"CommandsHaveOwnerAndKeys",
     {},
     "commands --root DEMO",
     0,
     {"sim/flight/climb", "simulator  F5, button 1  Climb", "aerivo/samples/wave  Commands   -"}},
    {"KeysAreConstants",
     {},
     "keys 'Numpad-*'",
     0,
     {"enum {\n    KEY_NUMPAD_0 = 96,", "KEY_NUMPAD_PLUS = 107,", "};\n", "    KEY_FLAG_UP = 8,\n};\n"}},
    {"EveryFunctionIsListed", {}, "functions", 0, {"AVSK/AVSKCamera.h\n", "  receiveMessage ", "AVPluginStart  "}},
    {"AFunctionHasItsDocumentation",
     {},
     "functions avskfinddataref",
     0,
     {"AVSKFindDataRef: function, AVSK/AVSKDataAccess.h\n\nAVSK_API AVSKDataRef AVSKFindDataRef(const char *name);\n\n",
      "Finds a dataref", "@param name", "@return", "\n[main thread, any time]\n"}},
    {"AWrongFunctionHasANearestName", {}, "functions AVSKFindDatRef", 2, {"did you mean 'AVSKFindDataRef'"}},
};

INSTANTIATE_TEST_SUITE_P(Commands, CommandLineTest, testing::ValuesIn(kCases),
                         [](const auto &tested) { return tested.param.claim; });

} // namespace
