// HotKeys: registers two hot keys and shows the hot keys of all plugins in a
// table. A click on a row moves that hot key to the next function key.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int kFont = 1;
constexpr int kLeft = 480;
constexpr int kTop = 500;
constexpr int kColumns = 60;
// The simulator defines the key flags. A hot key runs when all flags are equal: here at the press, without shift and
// control.
constexpr int kShift = 1;
constexpr int kControl = 2;
constexpr int kKeyDown = 4;
constexpr char kKeyF1 = 112;
constexpr char kKeyF2 = 113;
constexpr char kKeyF3 = 114;
constexpr char kKeyF12 = 123;

struct Row {
    AVSKHotKeyID hotKey;
    char key;
    int flags;
    std::string plugin;
    std::string description;
};

AVSKWindowID gWindow = nullptr;
std::vector<Row> gRows;
float gReadAt = 0;
int gCounted = 0;

int LineHeight() {
    int height = 0;
    AVSKGetFontDimensions(kFont, nullptr, &height, nullptr);
    return height;
}

Row Describe(AVSKHotKeyID hotKey) {
    Row row{hotKey, 0, 0, {}, {}};
    AVSKPluginID plugin = NO_PLUGIN_ID;
    std::array<char, AVSK_HOT_KEY_TEXT_SIZE> description{};
    std::array<char, AVSK_TEXT_SIZE> name{};
    AVSKGetHotKeyInfo(hotKey, &row.key, &row.flags, description.data(), &plugin);
    AVSKGetPluginInfo(plugin, name.data(), nullptr, nullptr, nullptr);
    row.plugin = name.data();
    row.description = description.data();
    return row;
}

// Reads the hot keys of all plugins and adjusts the height of the window to the table.
void Read() {
    gRows.clear();
    const int count = AVSKCountHotKeys();
    for (int i = 0; i < count; ++i)
        gRows.push_back(Describe(AVSKGetNthHotKey(i)));
    gReadAt = AVSKGetElapsedTime();

    int left = 0;
    int top = 0;
    int right = 0;
    AVSKGetWindowGeometry(gWindow, &left, &top, &right, nullptr);
    AVSKSetWindowGeometry(gWindow, left, top, right, top - (2 * count + 5) * LineHeight() / 2);
}

std::string KeyName(char key, int flags) {
    std::string name = (flags & kControl) != 0 ? "control+" : "";
    if ((flags & kShift) != 0)
        name += "shift+";
    if (key >= kKeyF1 && key <= kKeyF12)
        return name + "F" + std::to_string(key - kKeyF1 + 1);
    if ((key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z'))
        return name + key;
    return name + "key " + std::to_string(static_cast<unsigned char>(key));
}

void Draw(AVSKWindowID window, void * /*refcon*/) {
    // Not in each frame: other plugins rarely change their hot keys, and our own changes are read at once.
    constexpr float kStale = 1.0F;
    if (AVSKGetElapsedTime() - gReadAt > kStale)
        Read();

    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    AVSKGetWindowGeometry(window, &left, &top, &right, &bottom);
    AVSKDrawTranslucentDarkBox(left, top, right, bottom);

    const int height = LineHeight();
    int y = top;
    const auto write = [&](const char *key, const char *plugin, const char *description, std::array<float, 3> colour) {
        std::array<char, kColumns> line{};
        std::snprintf(line.data(), line.size(), " %-12.12s %-14.14s %.30s", key, plugin, description);
        AVSKDrawString(colour.data(), left, y -= height, line.data(), nullptr, kFont);
    };
    write("Hot key", "Plugin", "Click for the next key", {1.0F, 0.85F, 0.3F});
    for (const Row &row : gRows)
        write(KeyName(row.key, row.flags).c_str(), row.plugin.c_str(), row.description.c_str(), {0.85F, 0.85F, 0.85F});
    write("", "", ("counted " + std::to_string(gCounted)).c_str(), {0.6F, 0.8F, 1.0F});
}

// If several hot keys have one combination, only the one registered last runs. This sample accepts that.
int Click(AVSKWindowID window, int /*x*/, int y, int status, void * /*refcon*/) {
    if (status != AVSKMouseDown)
        return 1;
    int top = 0;
    AVSKGetWindowGeometry(window, nullptr, &top, nullptr, nullptr);
    // The baseline lies above the bottom of the line by the font's descent.
    const int index = (top - y - LineHeight() / 4) / LineHeight() - 1;
    if (index < 0 || index >= static_cast<int>(gRows.size()))
        return 1;
    const Row &row = gRows[static_cast<std::size_t>(index)];
    const bool another = row.key >= kKeyF1 && row.key < kKeyF12;
    // The hot keys of every plugin can be changed. A hot key that no longer exists is ignored.
    AVSKSetHotKeyCombination(row.hotKey, another ? static_cast<char>(row.key + 1) : kKeyF1, row.flags);
    Read();
    return 1;
}

void Key(AVSKWindowID, char, int, char, void *, int) {} // the table never takes the focus

void ShowOrHide(void * /*refcon*/) {
    const bool show = AVSKGetWindowIsVisible(gWindow) == 0;
    if (show)
        Read();
    AVSKSetWindowIsVisible(gWindow, show ? 1 : 0);
}

void Count(void * /*refcon*/) { ++gCounted; }

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "HotKeys");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.hotkeys");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "A table of all plugins' hot keys.");

    AVSKRegisterHotKey(kKeyF3, kKeyDown, "count", Count, nullptr);
    AVSKRegisterHotKey(kKeyF2, kKeyDown, "show or hide this table", ShowOrHide, nullptr);

    int width = 0;
    AVSKGetFontDimensions(kFont, &width, nullptr, nullptr);
    constexpr int kVisible = 1;
    gWindow = AVSKCreateWindow(kLeft, kTop, kLeft + kColumns * width, kTop, kVisible, Draw, Key, Click, nullptr);
    return 1;
}

// All plugins have started and registered their hot keys.
int AVPluginEnable(void) {
    Read();
    return 1;
}

// The library removes hot keys and window. This is empty: the log reports every entry point that a plugin lacks.
void AVPluginStop(void) {}
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
