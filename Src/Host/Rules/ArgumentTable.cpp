// The table of requirements; see ArgumentTable.h.
#include "ArgumentTable.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKNavigation.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKPlugins.h"
#include "AVSK/AVSKProcessing.h"
#include "AVSK/AVSKScenery.h"

namespace host {
namespace {

constexpr int kLongestPath = AVSK_TEXT_SIZE - 1;

int CountOfAircraft() {
    int count = 0;
    AVSKCountAircraft(&count, nullptr, nullptr);
    return count;
}

bool IsPhase(int phase) { return (phase >= 0 && phase <= 55 && phase % 5 == 0) || (phase >= 100 && phase <= 102); }
bool IsZeroOrOne(int value) { return value == 0 || value == 1; }
bool IsOneOrTwo(int value) { return value == 1 || value == 2; }
bool IsDataType(int type) { return type > 0 && type <= AVSKDataTypeData && (type & (type - 1)) == 0; }

constexpr ArgumentRow Handle(const char *function, const char *parameter, HandleKind kind, Must must = Must::BeHandle) {
    return {.function = function, .parameter = parameter, .must = must, .kind = kind};
}
constexpr ArgumentRow OneOf(const char *function, const char *parameter, bool (*allows)(int), const char *text) {
    return {.function = function, .parameter = parameter, .must = Must::BeOneOf, .allows = allows, .text = text};
}
// The counting function is called by an observer, so it must change nothing. AVSKCountHotKeys() does: it leaves a walk
// over the hot keys open.
constexpr ArgumentRow Index(const char *function, const char *parameter, int (*count)()) {
    return {.function = function, .parameter = parameter, .must = Must::BeBelow, .count = count};
}

constexpr ArgumentRow kArgumentRows[] = {
    // ---- Camera
    OneOf("AVSKControlCamera", "duration", IsOneOrTwo, "AVSKCameraUntilViewChanges or AVSKCameraForever"),
    {"AVSKReadCameraPosition", "outPosition", Must::BeSet},

    // ---- Datarefs
    {"AVSKRegisterDataAccessor", "name", Must::BeSet},
    {"AVSKSetDataf", "value", Must::BeFiniteValue},
    {"AVSKSetDatad", "value", Must::BeFiniteValue},
    {"AVSKShareData", "name", Must::BeSet},
    OneOf("AVSKShareData", "type", IsDataType, "one of AVSKDataTypeBits"),

    // ---- Draw callbacks, key sniffers, windows and hot keys
    {"AVSKRegisterDrawCallback", "callback", Must::BeFunction},
    OneOf("AVSKRegisterDrawCallback", "phase", IsPhase, "0, 5, 10 and so on to 55, or 100 to 102"),
    OneOf("AVSKRegisterDrawCallback", "wantsBefore", IsZeroOrOne, "0 or 1"),
    {"AVSKRegisterKeySniffer", "callback", Must::BeFunction},
    {"AVSKCreateWindow", "left", Must::BeginRectangle},
    {"AVSKCreateWindowEx", "params", Must::BeSet},
    {"AVSKCreateWindowEx", "params", Must::HaveSize, sizeof(AVSKCreateWindowParams)},
    {"AVSKCreateWindowEx", "params.left", Must::BeginRectangle},
    {"AVSKSetWindowGeometry", "left", Must::BeginRectangle},
    Handle("AVSKDestroyWindow", "window", HandleKind::Window, Must::BeHandleOrNull),
    Handle("AVSKGetWindowGeometry", "window", HandleKind::Window),
    Handle("AVSKSetWindowGeometry", "window", HandleKind::Window),
    Handle("AVSKGetWindowIsVisible", "window", HandleKind::Window, Must::BeHandleOrNull),
    Handle("AVSKSetWindowIsVisible", "window", HandleKind::Window),
    Handle("AVSKGetWindowRefCon", "window", HandleKind::Window),
    Handle("AVSKSetWindowRefCon", "window", HandleKind::Window),
    Handle("AVSKTakeKeyboardFocus", "window", HandleKind::Window, Must::BeHandleOrNull),
    Handle("AVSKBringWindowToFront", "window", HandleKind::Window),
    Handle("AVSKIsWindowInFront", "window", HandleKind::Window, Must::BeHandleOrNull),
    {"AVSKRegisterHotKey", "callback", Must::BeFunction},
    {"AVSKRegisterHotKey", "description", Must::BeTextOrNull},
    {"AVSKRegisterHotKey", "description", Must::BeShown, AVSK_HOT_KEY_TEXT_SIZE - 1},
    Handle("AVSKUnregisterHotKey", "hotKey", HandleKind::HotKey, Must::BeHandleOrNull),
    Handle("AVSKGetHotKeyInfo", "hotKey", HandleKind::HotKey),
    Handle("AVSKSetHotKeyCombination", "hotKey", HandleKind::HotKey),
    {"AVSKGetScreenSize", "outWidth", Must::BeSetForHost},
    {"AVSKGetScreenSize", "outHeight", Must::BeSetForHost},
    {"AVSKGetMouseLocation", "outX", Must::BeSetForHost},
    {"AVSKGetMouseLocation", "outY", Must::BeSetForHost},

    // ---- Drawing
    {"AVSKGenerateTextureNumbers", "outTextures", Must::BeSet},
    {"AVSKWorldToLocal", "a", Must::BeFinite},
    {"AVSKWorldToLocal", "b", Must::BeFinite},
    {"AVSKWorldToLocal", "c", Must::BeFinite},
    {"AVSKWorldToLocal", "outX", Must::BeSetForHost},
    {"AVSKWorldToLocal", "outY", Must::BeSetForHost},
    {"AVSKWorldToLocal", "outZ", Must::BeSetForHost},
    {"AVSKLocalToWorld", "x", Must::BeFinite},
    {"AVSKLocalToWorld", "y", Must::BeFinite},
    {"AVSKLocalToWorld", "z", Must::BeFinite},
    {"AVSKLocalToWorld", "outA", Must::BeSetForHost},
    {"AVSKLocalToWorld", "outB", Must::BeSetForHost},
    {"AVSKLocalToWorld", "outC", Must::BeSetForHost},
    {"AVSKDrawString", "colour", Must::BeSetForHost},
    {"AVSKDrawString", "text", Must::BeText},
    {"AVSKDrawNumber", "colour", Must::BeSetForHost},
    {"AVSKMeasureString", "text", Must::BeText},

    // ---- Menus
    {"AVSKCreateMenu", "name", Must::BeText},
    Handle("AVSKCreateMenu", "parent", HandleKind::Menu, Must::BeHandleOrNull),
    {"AVSKCreateMenu", "parentItem", Must::BeItem},
    Handle("AVSKDestroyMenu", "menu", HandleKind::Menu, Must::BeOwnHandleOrNull),
    Handle("AVSKClearAllMenuItems", "menu", HandleKind::Menu, Must::BeOwnHandle),
    Handle("AVSKAppendMenuItem", "menu", HandleKind::Menu),
    {"AVSKAppendMenuItem", "name", Must::BeText},
    Handle("AVSKAppendMenuSeparator", "menu", HandleKind::Menu),
    Handle("AVSKRemoveMenuItem", "menu", HandleKind::Menu),
    {"AVSKRemoveMenuItem", "index", Must::BeItem},
    Handle("AVSKSetMenuItemName", "menu", HandleKind::Menu),
    {"AVSKSetMenuItemName", "index", Must::BeItem},
    {"AVSKSetMenuItemName", "name", Must::BeText},
    Handle("AVSKCheckMenuItem", "menu", HandleKind::Menu),
    {"AVSKCheckMenuItem", "index", Must::BeItem},
    Handle("AVSKCheckMenuItemState", "menu", HandleKind::Menu),
    {"AVSKCheckMenuItemState", "index", Must::BeItem},
    Handle("AVSKEnableMenuItem", "menu", HandleKind::Menu),
    {"AVSKEnableMenuItem", "index", Must::BeItem},

    // ---- Flight plan
    Index("AVSKSetDisplayedFMSEntry", "index", AVSKCountFMSEntries),
    Index("AVSKSetDestinationFMSEntry", "index", AVSKCountFMSEntries),
    Index("AVSKGetFMSEntryInfo", "index", AVSKCountFMSEntries),
    {"AVSKSetFMSEntryLatLon", "latitude", Must::BeFinite},
    {"AVSKSetFMSEntryLatLon", "longitude", Must::BeFinite},

    // ---- Aircraft
    {"AVSKSetUsersAircraft", "path", Must::BeSet},
    {"AVSKPlaceUserAtAirport", "airport", Must::BeSet},
    Index("AVSKGetNthAircraftModel", "index", CountOfAircraft),
    {"AVSKAcquirePlanes", "paths", Must::BeShortPaths, kLongestPath},
    Index("AVSKSetAircraftModel", "index", CountOfAircraft),
    {"AVSKSetAircraftModel", "path", Must::BeSet},
    {"AVSKSetAircraftModel", "path", Must::BeShort, kLongestPath},

    // ---- Flight loops
    {"AVSKCreateFlightLoop", "params", Must::BeSet},
    {"AVSKCreateFlightLoop", "params", Must::HaveSize, sizeof(AVSKCreateFlightLoopParams)},
    {"AVSKCreateFlightLoop", "params.callbackFunc", Must::BeFunction},
    OneOf("AVSKCreateFlightLoop", "params.phase", IsZeroOrOne, "one of AVSKFlightLoopPhase"),
    Handle("AVSKDestroyFlightLoop", "loop", HandleKind::Loop, Must::BeOwnHandleOrNull),
    Handle("AVSKScheduleFlightLoop", "loop", HandleKind::Loop, Must::BeOwnHandle),
    {"AVSKScheduleFlightLoop", "interval", Must::BeNumber},
    {"AVSKRegisterFlightLoopCallback", "callback", Must::BeFunction},
    {"AVSKRegisterFlightLoopCallback", "interval", Must::BeNumber},
    {"AVSKSetFlightLoopCallbackInterval", "interval", Must::BeNumber},

    // ---- Plugins
    Index("AVSKGetNthPlugin", "index", AVSKCountPlugins),
    {"AVSKEnablePlugin", "plugin", Must::BePlugin},
    {"AVSKDisablePlugin", "plugin", Must::BePlugin},
    {"AVSKSendMessageToPlugin", "target", Must::BePluginOrAll},
    {"AVSKIsFeatureEnabled", "name", Must::BeFeature},
    {"AVSKEnableFeature", "name", Must::BeFeature},
    {"AVSKEnumerateFeatures", "callback", Must::BeFunction},

    // ---- Probes and objects
    OneOf(
        "AVSKCreateProbe", "type", [](int type) { return type == AVSK_PROBE_Y; }, "AVSK_PROBE_Y"),
    Handle("AVSKDestroyProbe", "probe", HandleKind::Probe, Must::BeHandleOrNull),
    Handle("AVSKProbeTerrainXYZ", "probe", HandleKind::Probe),
    {"AVSKProbeTerrainXYZ", "x", Must::BeFinite},
    {"AVSKProbeTerrainXYZ", "y", Must::BeFinite},
    {"AVSKProbeTerrainXYZ", "z", Must::BeFinite},
    {"AVSKProbeTerrainXYZ", "outInfo", Must::BeSet},
    {"AVSKProbeTerrainXYZ", "outInfo", Must::HaveSize, sizeof(AVSKProbeInfo)},
    {"AVSKLoadObject", "path", Must::BeSet},
    {"AVSKLoadObjectAsync", "path", Must::BeSet},
    Handle("AVSKDrawObjects", "object", HandleKind::Object),
    {"AVSKDrawObjects", "infos", Must::BePlaces},
    Handle("AVSKUnloadObject", "object", HandleKind::Object, Must::BeOwnHandle),
    {"AVSKLookupObjects", "path", Must::BeSet},
    {"AVSKLookupObjects", "latitude", Must::BeFinite},
    {"AVSKLookupObjects", "longitude", Must::BeFinite},
    {"AVSKLookupObjects", "enumerator", Must::BeSetForHost},

    // ---- Log, data files and commands
    {"AVSKDebugString", "text", Must::BeText},
    {"AVSKSpeakString", "text", Must::BeText},
    {"AVSKFindSymbol", "name", Must::BeSet},
    OneOf("AVSKLoadDataFile", "fileType", IsOneOrTwo, "1 or 2"),
    {"AVSKLoadDataFile", "path", Must::BeSet},
    OneOf("AVSKSaveDataFile", "fileType", IsOneOrTwo, "1 or 2"),
    {"AVSKSaveDataFile", "path", Must::BeSet},
    {"AVSKFindCommand", "name", Must::BeSet},
    {"AVSKCreateCommand", "name", Must::BeSet},
    {"AVSKCreateCommand", "name", Must::BeOwnName},
    {"AVSKCreateCommand", "description", Must::BeTextOrNull},
    Handle("AVSKCommandBegin", "command", HandleKind::Command),
    Handle("AVSKCommandEnd", "command", HandleKind::Command),
    Handle("AVSKCommandOnce", "command", HandleKind::Command),
    Handle("AVSKRegisterCommandHandler", "command", HandleKind::Command),
    {"AVSKRegisterCommandHandler", "handler", Must::BeFunction},
    Handle("AVSKUnregisterCommandHandler", "command", HandleKind::Command, Must::BeHandleOrNull),
    {"AVSKGetSystemPath", "outPath", Must::BeSet},
    {"AVSKGetPrefsPath", "outPath", Must::BeSet},
};

} // namespace

std::span<const ArgumentRow> ArgumentRows() { return kArgumentRows; }

} // namespace host
