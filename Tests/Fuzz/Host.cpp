#include "Host.h"

#include "Model.h"

#include "../Support/Slots.h"

#include <cstring>
#include <list>

namespace {

struct HostMenu {
    bool destroyed = false;
    std::vector<std::string> names;
    std::vector<int> ids;
};

struct LoadRequest {
    void (*completion)(void *object, void *argument);
    void *argument;
    bool completed;
};

constexpr int kObjects = 4;
int objectCounts[kObjects]; // loads less unloads; their addresses are the objects
char commandCells[kCommands];
char probeCells[256];
unsigned probes = 0;
std::list<HostMenu> &menus = *new std::list<HostMenu>;
std::vector<LoadRequest> &requests = *new std::vector<LoadRequest>;
int lastItemID = 0;
AVSKHostCallbacks table;

// A service that may report something before it returns. Nothing is thrown past it.
void Service() {
    if (gFuzz.calm || !gFuzz.in.Rarely(8))
        return;
    const Deeper host(gFuzz.hostDepth);
    ActAsHost();
}

// Menus change their books around the call: only a wild host interrupts them.
void MenuService() {
    if (gFuzz.wildHost)
        Service();
}

HostMenu &Known(void *menu, const char *service) {
    for (HostMenu &each : menus)
        if (&each == menu) {
            REQUIRE(!each.destroyed || gFuzz.wildHost, "%s is called for a menu that was destroyed", service);
            return each;
        }
    Fail("%s is called for %p, which is no menu", service, menu);
}

int Size(const HostMenu &menu) { return static_cast<int>(menu.names.size()); }

void *CreateMenu(void *parent, int parentItem, const char *name) {
    REQUIRE(name, "createMenu without a name");
    if (parent) {
        const HostMenu &above = Known(parent, "createMenu");
        REQUIRE(gFuzz.wildHost || (parentItem >= -1 && parentItem < Size(above)), "createMenu under item %d of %d",
                parentItem, Size(above));
    }
    menus.emplace_back();
    void *menu = &menus.back();
    MenuService();
    return menu;
}

int AppendMenuItem(void *menu, int index, const char *name, int) {
    HostMenu &known = Known(menu, "appendMenuItem");
    const int id = ++lastItemID;
    if (!gFuzz.wildHost)
        REQUIRE(index >= 0 && index <= Size(known), "appendMenuItem at %d of %d", index, Size(known));
    if (index >= 0 && index < Size(known)) {
        const auto at = static_cast<std::size_t>(index);
        REQUIRE(gFuzz.wildHost || known.names[at].empty(), "appendMenuItem at %d, where \"%s\" is", index,
                known.names[at].c_str());
        known.names[at] = name ? name : "";
        known.ids[at] = id;
    } else {
        known.names.emplace_back(name ? name : "");
        known.ids.push_back(id);
    }
    MenuService();
    return id;
}

void SetMenuItemName(void *menu, int index, const char *name, int) {
    HostMenu &known = Known(menu, "setMenuItemName");
    REQUIRE(gFuzz.wildHost || (index >= -1 && index < Size(known)), "setMenuItemName of %d of %d", index, Size(known));
    if (index >= 0 && index < Size(known))
        known.names[static_cast<std::size_t>(index)] = name ? name : "";
    MenuService();
}

void RemoveMenuItem(void *menu, int index) {
    HostMenu &known = Known(menu, "removeMenuItem");
    REQUIRE(gFuzz.wildHost || (index >= 0 && index < Size(known)), "removeMenuItem of %d of %d", index, Size(known));
    if (index >= 0 && index < Size(known)) {
        known.names.erase(known.names.begin() + index);
        known.ids.erase(known.ids.begin() + index);
    }
    MenuService();
}

void DestroyMenu(void *menu) {
    REQUIRE(table.sizeInBytes > 287, "destroyMenu of a short table");
    Known(menu, "destroyMenu").destroyed = true;
    MenuService();
}

void *AnyObject() {
    const int number = gFuzz.in.Below(kObjects + 1);
    if (number == kObjects)
        return nullptr;
    ++objectCounts[number];
    return &objectCounts[number];
}

void *LoadObject(const char *path) {
    REQUIRE(path, "loadObject without a path");
    Service();
    return AnyObject();
}

void UnloadObject(void *object) {
    if (!object)
        return;
    const std::ptrdiff_t number = static_cast<int *>(object) - objectCounts;
    REQUIRE(number >= 0 && number < kObjects, "unloadObject of %p, which is no object", object);
    REQUIRE(--objectCounts[number] >= 0, "object %d is unloaded more often than loaded", static_cast<int>(number));
    Service();
}

void Complete(LoadRequest &request) {
    // Reported again: the library ignores it, and so the object is nobody's.
    const bool again = request.completed;
    request.completed = true;
    void *object = again ? static_cast<void *>(&objectCounts[0]) : AnyObject();
    const LoadRequest copy = request; // more may be asked for meanwhile
    copy.completion(object, copy.argument);
}

void LoadObjectAsync(const char *path, void (*completion)(void *, void *), void *argument) {
    REQUIRE(path && completion, "loadObjectAsync without path or completion");
    requests.push_back({completion, argument, false});
    if (gFuzz.calm)
        return;
    const Deeper host(gFuzz.hostDepth);
    if (gFuzz.in.Rarely(4)) {
        try {
            Complete(requests.back());
        } catch (...) {
            ++gCounters.throws;
        }
    }
    Service();
}

void LoadAircraftModel(int index, const char *path, const char *fileName) {
    REQUIRE(path && fileName, "loadAircraftModel without path or name");
    char name[256] = "x.acf";
    static char room[4096];
    std::strcpy(room, path);
    AVSKUpdatePlaneNameAndPath(index, name, room);
    Service();
}

void GetAircraftModel(int, char *outPath, char *outFileName) {
    Service();
    std::strcpy(outPath, (gFuzz.root + "Aircraft/a/x.acf").c_str());
    std::strcpy(outFileName, "x.acf");
}

int KnownCommand(void *command) {
    const std::ptrdiff_t number = static_cast<char *>(command) - commandCells;
    REQUIRE(number >= 0 && number < kCommands, "%p is no command", command);
    return static_cast<int>(number);
}

void CommandService(void *command) {
    KnownCommand(command);
    Service();
}

template <class Result, class... Arguments>
struct Quiet;
template <class Result, class... Arguments>
struct Quiet<Result (*)(Arguments...)> {
    static Result Call(Arguments...) { return Result(); }
};

} // namespace

const AVSKHostCallbacks *FreshHost(int version, bool fullTable) {
    menus.clear();
    requests.clear();
    std::memset(objectCounts, 0, sizeof objectCounts);
    lastItemID = 0;
    AVSKHostCallbacks &t = table;
    t.version = version;
    t.sizeInBytes = fullTable ? static_cast<int>(sizeof t) : 280;

#define FUZZ_FILL(number, name) t.name = Quiet<decltype(t.name)>::Call;
    AVSK_TEST_SLOTS(FUZZ_FILL)
#undef FUZZ_FILL

    t.getScreenSize = [](int *width, int *height) { *width = *height = 256; };
    t.getMouseLocation = [](int *x, int *y, int) {
        Service();
        *x = gFuzz.in.Below(16);
        *y = gFuzz.in.Below(16);
    };
    t.getElapsedTime = [] {
        Service();
        return gFuzz.now;
    };
    t.loadAircraftModel = LoadAircraftModel;
    t.getAircraftModel = GetAircraftModel;
    t.countAircraft = [] {
        Service();
        return 4;
    };
    t.commandButton = [](const int *buttons, int, int) {
        for (; *buttons; ++buttons)
            REQUIRE(*buttons > 0 && *buttons < 5, "%d is no button", *buttons);
        Service();
        // The pass begins after the held buttons.
        if (!gFuzz.passes.empty())
            gFuzz.passes.back().serial = ++gFuzz.serial;
    };
    t.getSystemPath = [](char *outPath) { std::strcpy(outPath, gFuzz.root.c_str()); };
    t.getPrefsPath = [](char *outPath) { std::strcpy(outPath, "prefs"); };
    t.createMenu = CreateMenu;
    t.appendMenuItem = AppendMenuItem;
    t.setMenuItemName = SetMenuItemName;
    t.removeMenuItem = RemoveMenuItem;
    t.destroyMenu = DestroyMenu;
    t.showMessage = [](const char *, const char *, const char *, const char *) {
        REQUIRE(table.version > 2, "showMessage of an old host");
        Service();
    };
    t.showProgress = [](const char *) {
        REQUIRE(table.version > 3, "showProgress of an old host");
        Service();
    };
    t.findCommand = [](const char *, const char *, int) -> void * { return HostCommand(gFuzz.in.Below(kCommands)); };
    t.beginCommand = CommandService;
    t.continueCommand = CommandService;
    t.endCommand = CommandService;
    t.createProbe = []() -> void * {
        Service();
        return &probeCells[probes++ % sizeof probeCells];
    };
    t.loadObject = LoadObject;
    t.unloadObject = UnloadObject;
    t.lookupObjects = [](const char *, float, float, void (*enumerator)(const char *, void *), void *reference) {
        for (int i = 0; enumerator && i < 2; ++i)
            enumerator("an object", reference);
        return 2;
    };
    t.loadObjectAsync = LoadObjectAsync;
    t.receiveMessage = [](int, int, void *) { Service(); };
    return &t;
}

void *HostCommand(int number) { return &commandCells[number]; }

void *AnyHostMenu() {
    if (menus.empty())
        return nullptr;
    auto at = menus.begin();
    std::advance(at, gFuzz.in.Byte() % menus.size());
    return &*at;
}

int AnyHostItemID() { return lastItemID - gFuzz.in.Below(16); }

void CompleteLoad() {
    if (!requests.empty())
        Complete(requests[requests.size() - 1 - gFuzz.in.Byte() % requests.size()]);
}

void CompleteAllLoads() {
    for (std::size_t i = 0; i < requests.size(); ++i)
        if (!requests[i].completed)
            Complete(requests[i]);
}

void CheckObjectsReturned() {
    for (int number = 0; number < kObjects; ++number)
        REQUIRE(objectCounts[number] == 0, "object %d is loaded %d times at the end", number, objectCounts[number]);
}
