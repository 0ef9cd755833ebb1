#include "Model.h"

#include "../Support/Slots.h"

#include <cstring>

Clearing *gClearing = nullptr;

namespace {

struct HostItem {
    bool named;
    int id;
};

struct HostMenu {
    bool destroyed = false;
    int appended = 0; // never fewer than the library lists
    std::vector<HostItem> items;
    int Size() const { return static_cast<int>(items.size()); }
    HostItem *At(int index) { return index >= 0 && index < Size() ? &items[static_cast<std::size_t>(index)] : nullptr; }
};

struct LoadRequest {
    void (*completion)(void *object, void *argument);
    void *argument;
    bool completed;
};

constexpr int kObjects = 4;
int objectCounts[kObjects]; // loads minus unloads; the address of a count is the object
char commandCells[kCommands];
char probeCells[256];
unsigned probes = 0;
std::vector<HostMenu> &menus = *new std::vector<HostMenu>; // a handle is the number in this list, from 1
std::vector<LoadRequest> &requests = *new std::vector<LoadRequest>;
int lastItemID = 0; // not reset: items of earlier runs are not picked
AVSKHostCallbacks table;

// A service call, which may call the library before it returns. No exception passes it.
void Service() {
    ++gFuzz.services;
    if (gFuzz.calm || --gFuzz.quiet >= 0)
        return;
    constexpr int pauses[] = {64, 32, 16, 8, 4, 2, 1, 0};
    gFuzz.quiet = gFuzz.in.OneOf(pauses);
    const AVSKScopedValue host(gFuzz.hostDepth, gFuzz.hostDepth + 1);
    ActAsHost();
}

// The library changes a menu before and after the call, so only a wild host re-enters here.
void MenuService() {
    if (gFuzz.wildHost)
        Service();
    else
        ++gFuzz.services;
}

void *HandleOf(std::size_t number) { return reinterpret_cast<void *>(number); }

HostMenu &Known(void *menu, const char *service) {
    const auto number = reinterpret_cast<std::uintptr_t>(menu);
    REQUIRE(number > 0 && number <= menus.size(), "%s is called for %p, which is no menu", service, menu);
    HostMenu &known = menus[number - 1];
    REQUIRE(!known.destroyed || gFuzz.wildHost, "%s is called for a menu that was destroyed", service);
    return known;
}

void *CreateMenu(void *parent, int parentItem, const char *name) {
    REQUIRE(name, "createMenu without a name");
    if (parent) {
        const HostMenu &above = Known(parent, "createMenu");
        REQUIRE(gFuzz.wildHost || (parentItem >= -1 && parentItem < above.Size()), "createMenu under item %d",
                parentItem);
    }
    menus.emplace_back();
    void *menu = HandleOf(menus.size());
    MenuService();
    return menu;
}

int AppendMenuItem(void *menu, int index, const char *name, int) {
    HostMenu &known = Known(menu, "appendMenuItem");
    const int id = ++lastItemID;
    ++known.appended;
    REQUIRE(gFuzz.wildHost || (index >= 0 && index <= known.Size()), "appendMenuItem at %d of %d", index, known.Size());
    const HostItem added = {name && *name, id};
    if (HostItem *item = known.At(index)) {
        REQUIRE(gFuzz.wildHost || !item->named, "appendMenuItem at %d, where an item is", index);
        *item = added;
    } else {
        known.items.push_back(added);
    }
    MenuService();
    return id;
}

void SetMenuItemName(void *menu, int index, const char *name, int) {
    HostMenu &known = Known(menu, "setMenuItemName");
    REQUIRE(gFuzz.wildHost || (index >= -1 && index < known.Size()), "setMenuItemName of %d", index);
    if (HostItem *item = known.At(index))
        item->named = name && *name;
    if (gClearing && gClearing->depth == gFuzz.depth) {
        if (gClearing->renames < 0)
            gClearing->renames = known.appended;
        REQUIRE(gClearing->renames > 0, "clearing a menu follows what is appended");
        --gClearing->renames;
        if (gFuzz.wildHost && gFuzz.in.Rarely(4))
            AVSKAppendMenuItem(gClearing->menu, "Another item", nullptr, 0);
    }
    MenuService();
}

void RemoveMenuItem(void *menu, int index) {
    HostMenu &known = Known(menu, "removeMenuItem");
    REQUIRE(gFuzz.wildHost || known.At(index), "removeMenuItem of %d of %d", index, known.Size());
    if (known.At(index))
        known.items.erase(known.items.begin() + index);
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
    // The library ignores a second report, so the object gets no owner.
    const bool again = request.completed;
    request.completed = true;
    void *object = again ? static_cast<void *>(&objectCounts[0]) : AnyObject();
    const LoadRequest copy = request; // a request inside the completion may reallocate
    copy.completion(object, copy.argument);
}

void LoadObjectAsync(const char *path, void (*completion)(void *, void *), void *argument) {
    REQUIRE(path && completion, "loadObjectAsync without path or completion");
    requests.push_back({completion, argument, false});
    if (gFuzz.calm)
        return;
    const AVSKScopedValue host(gFuzz.hostDepth, gFuzz.hostDepth + 1);
    if (gFuzz.in.Rarely(4))
        Catching([] { Complete(requests.back()); });
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

void CommandService(void *command) {
    const std::ptrdiff_t number = static_cast<char *>(command) - commandCells;
    REQUIRE(number >= 0 && number < kCommands, "%p is no command", command);
    Service();
}

template <class Result, class... Arguments>
struct Any;
template <class Result, class... Arguments>
struct Any<Result (*)(Arguments...)> {
    static Result Call(Arguments...) {
        Service();
        return Result();
    }
};

} // namespace

const AVSKHostCallbacks *FreshHost(int version, bool fullTable) {
    menus.clear();
    requests.clear();
    std::memset(objectCounts, 0, sizeof objectCounts);
    gClearing = nullptr;
    AVSKHostCallbacks &t = table;
    t.version = version;
    t.sizeInBytes = fullTable ? static_cast<int>(sizeof t) : 280;

#define FUZZ_FILL(number, name) t.name = Any<decltype(t.name)>::Call;
    AVSK_TEST_SLOTS(FUZZ_FILL)
#undef FUZZ_FILL

    t.getScreenSize = [](int *width, int *height) {
        Service();
        *width = *height = 256;
    };
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
    t.getAircraftModel = [](int, char *outPath, char *outFileName) {
        Service();
        std::strcpy(outPath, "/Aircraft/a/x.acf");
        std::strcpy(outFileName, "x.acf");
    };
    t.countAircraft = [] {
        Service();
        return 4;
    };
    t.commandButton = [](const int *buttons, int, int) {
        for (; *buttons; ++buttons)
            REQUIRE(*buttons > 0 && *buttons < 5, "%d is no button", *buttons);
        Service();
        // A pass of flight loops begins after the held buttons are reported.
        gFuzz.pass.serial = ++gFuzz.serial;
    };
    t.getSystemPath = [](char *outPath) {
        ++gFuzz.upheavals; // the library asks for it only in a reload
        Service();
        std::strcpy(outPath, "/");
    };
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
    t.findCommand = [](const char *, const char *, int) -> void * {
        Service();
        return HostCommand(gFuzz.in.Below(kCommands));
    };
    t.beginCommand = t.continueCommand = t.endCommand = CommandService;
    t.createProbe = []() -> void * {
        Service();
        return &probeCells[probes++ % sizeof probeCells];
    };
    t.loadObject = LoadObject;
    t.unloadObject = UnloadObject;
    t.lookupObjects = [](const char *, float, float, void (*enumerator)(const char *, void *), void *reference) {
        Service();
        for (int i = 0; enumerator && i < 2; ++i)
            enumerator("an object", reference);
        return 2;
    };
    t.loadObjectAsync = LoadObjectAsync;
    return &t;
}

void *HostCommand(int number) { return &commandCells[number]; }

void *AnyHostMenu() { return menus.empty() ? nullptr : HandleOf(1 + gFuzz.in.Byte() % menus.size()); }

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
