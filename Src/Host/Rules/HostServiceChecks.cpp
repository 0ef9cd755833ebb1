// The checks of services; see HostServiceChecks.h.
#include "HostServiceChecks.h"

#include "HostServiceRules.h"
#include "StateChecks.h"

#include "Crossings/ValueText.h"

#include "AVSK/AVSKHost.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;

constexpr long kPatience = 600; // frames in which a load is to be completed
constexpr const char *kSeparator = "is a separator";
constexpr const char *kHidden = "has no name";
constexpr const char *kRemoved = "was removed";

// High, so that files get the numbers that they would get without this.
int OpenDescriptor() {
    constexpr int kLeast = 200;
    const int opened = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (opened < 0)
        return -1;
    const int high = fcntl(opened, F_DUPFD_CLOEXEC, kLeast);
    close(opened);
    return high;
}

int LowestFree(int descriptor) {
    const int free = descriptor < 0 ? -1 : fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (free >= 0)
        close(free);
    return free;
}

std::string TargetOf(int descriptor) {
    std::array<char, PATH_MAX> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    return readlink(link.c_str(), target.data(), target.size() - 1) > 0 ? Quoted(target.data()) : "unknown";
}

// Whether host code runs: a service, or a callback that the host registered.
bool IsHostCode(const Crossing &call) { return call.to == Side::Host; }

// Why nobody can pick an item with a name of this kind; null if somebody can.
const char *ReasonFor(int kind) { return kind == 1 ? kSeparator : kind == 0 ? kHidden : nullptr; }

// Of a name: 0 for "" and null, 1 for "-", 2 for others.
int KindOfName(const crossings::Value &name) {
    std::array<char, 3> text{};
    if (!name.text || !crossings::ReadText(name.text, -1, text.data(), text.size()) || !text[0])
        return 0;
    return std::string_view(text.data()) == "-" ? 1 : 2;
}

} // namespace

constexpr CallRow<HostServiceChecks> HostServiceChecks::kBefore[] = {
    {"AVSKEventHook", &HostServiceChecks::BeforeEvent},
    {"loadObjectAsync", &HostServiceChecks::BeforeLoad},
    {"loadObjectAsync_completion", &HostServiceChecks::BeforeCompletion},
    {"AVSKLibraryEnumerator_f", &HostServiceChecks::BeforeEnumerator},
    {"AVSKMenuHook", &HostServiceChecks::BeforePick},
};

constexpr CallRow<HostServiceChecks> HostServiceChecks::kAfter[] = {
    {"createMenu", &HostServiceChecks::AfterMenu},
    {"appendMenuItem", &HostServiceChecks::AfterItem},
    {"setMenuItemName", &HostServiceChecks::AfterName},
    {"removeMenuItem", &HostServiceChecks::AfterRemoval},
    {"destroyMenu", &HostServiceChecks::AfterMenuDestruction},
    {"createProbe", &HostServiceChecks::AfterProbe},
    {"findSymbol", &HostServiceChecks::AfterSymbol},
    {"lookupObjects", &HostServiceChecks::AfterLookup},
    {"lookupObjects", &HostServiceChecks::AfterCount},
    {"countAircraft", &HostServiceChecks::AfterCount},
    {"countFMSEntries", &HostServiceChecks::AfterCount},
    {"countFMSEntries", &HostServiceChecks::AfterEntryCount},
    {"setFMSEntryInfo", &HostServiceChecks::AfterPlanChange},
    {"setFMSEntryLatLon", &HostServiceChecks::AfterPlanChange},
    {"clearFMSEntry", &HostServiceChecks::AfterPlanChange},
    {"loadDataFile", &HostServiceChecks::AfterPlanChange},
    {"AVSKEventHook", &HostServiceChecks::AfterPlanChange}, // the user may edit the plan between frames
    {"getDisplayedFMSEntry", &HostServiceChecks::AfterEntryIndex},
    {"getDestinationFMSEntry", &HostServiceChecks::AfterEntryIndex},
};

HostServiceChecks::HostServiceChecks(Findings &findings)
    : mFindings(findings), mBefore(kBefore), mAfter(kAfter), mDescriptor(OpenDescriptor()) {
    crossings::AddObserver(*this);
}

HostServiceChecks::~HostServiceChecks() {
    crossings::RemoveObserver(*this);
    if (mDescriptor >= 0)
        close(mDescriptor);
}

// Of all calls: a service is not to blame for what its calls leave behind.
crossings::Interest HostServiceChecks::InterestIn(const crossings::Prototype & /*function*/) const {
    return crossings::Interest::Work;
}

void HostServiceChecks::Begins(const Crossing &crossing) {
    if (!mOpen.empty())
        mOpen.back().hasInner = true;
    mBefore.Apply(*this, crossing);
    mOpen.push_back({.free = IsHostCode(crossing) && !crossing.callback ? LowestFree(mDescriptor) : -1});
}

void HostServiceChecks::Ends(const Crossing &crossing) {
    if (crossing.returned)
        mAfter.Apply(*this, crossing);
    const Open open = mOpen.back();
    mOpen.pop_back();
    if (!mOpen.empty())
        mOpen.back().passes = !crossing.returned;
    if (!IsHostCode(crossing))
        return;
    if (!crossing.returned && !open.passes)
        mFindings.Add(
            Named(kHostServiceRules, "host-throws"), crossing,
            {{"type", crossing.thrownType ? TypeName(*crossing.thrownType) : "an exception of another language"}});
    if (crossing.stateBefore != crossing.stateAfter)
        CheckState(crossing);
    if (open.free >= 0 && !open.hasInner && LowestFree(mDescriptor) > open.free)
        CheckDescriptors(crossing, open);
}

// ---- What a service leaves behind

void HostServiceChecks::CheckState(const Crossing &call) {
    const crossings::CallState &before = call.stateBefore;
    const crossings::CallState &after = call.stateAfter;
    std::string changes;
    const auto compare = [&changes](const char *what, std::uint32_t was, std::uint32_t is) {
        if (was != is)
            changes += (changes.empty() ? "" : ", ") + std::string(what) + " is " +
                       Hexadecimal(reinterpret_cast<const void *>(is)) + " and was " +
                       Hexadecimal(reinterpret_cast<const void *>(was));
    };
    compare("the x87 control word", before.x87, after.x87);
    compare("the MXCSR", before.mxcsr, after.mxcsr);
    if (after.isBackward)
        changes += (changes.empty() ? "" : ", ") + std::string("the direction flag is set");
    if (!changes.empty())
        mFindings.Add(Named(kHostServiceRules, "host-state-processor"), call, {{"changes", changes}});
    if (after.blocked != before.blocked)
        mFindings.Add(Named(kHostServiceRules, "host-state-signals"), call,
                      {{"changes", SignalChanges(before.blocked, after.blocked)}});
}

bool HostServiceChecks::Left::IsOpen() const {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && status.st_dev == device && status.st_ino == file;
}

// Threads open files meanwhile, and a service may keep a file. Only what stays
// open after several calls of one service is a fault.
void HostServiceChecks::CheckDescriptors(const Crossing &call, const Open &open) {
    const std::string_view name = call.what.name;
    if (name == "loadObject" || name == "loadObjectAsync")
        return;
    struct stat status {};
    if (fstat(open.free, &status) != 0)
        return;
    Service &service = mServices[&call.what];
    service.left[service.count++] = {open.free, status.st_dev, status.st_ino};
    if (service.count < kDescriptors)
        return;
    std::size_t kept = 0;
    for (const Left &left : service.left) {
        if (left.IsOpen())
            service.left[kept++] = left;
    }
    service.count = kept % kDescriptors;
    if (kept == kDescriptors)
        mFindings.Add(Named(kHostServiceRules, "host-descriptor-left"), call,
                      {kOneFinding, {"count", std::to_string(kept)}, {"target", TargetOf(open.free)}});
}

// ---- Menus

void HostServiceChecks::AfterMenu(const Crossing &call) {
    const void *menu = call.result.pointer;
    if (!menu)
        mFindings.Add(Named(kHostServiceRules, "host-handle-null"), call, {{"where", "instead of a menu"}});
    else if (!mMenus.try_emplace(menu).second)
        mFindings.Add(Named(kHostServiceRules, "host-menu-twice"), call, {kOneFinding, {"handle", Hexadecimal(menu)}});
}

void HostServiceChecks::AfterItem(const Crossing &call) {
    const int id = call.result.integer;
    const int kind = KindOfName(call["name"]);
    const Item item{.id = id, .isSeparator = kind == 1, .isShown = kind != 0};
    if (!mItems.insert_or_assign(id, ReasonFor(kind)).second)
        mFindings.Add(Named(kHostServiceRules, "host-item-twice"), call, {kOneFinding, {"id", std::to_string(id)}});
    const auto menu = mMenus.find(call["menu"].pointer);
    if (menu == mMenus.end())
        return;
    std::vector<Item> &items = menu->second;
    const auto index = static_cast<std::size_t>(call["index"].integer);
    if (index >= items.size()) {
        items.push_back(item);
    } else if (!items[index].isShown) {
        mItems[items[index].id] = kRemoved;
        items[index] = item;
    } else {
        items.insert(items.begin() + static_cast<std::ptrdiff_t>(index), item);
    }
}

HostServiceChecks::Item *HostServiceChecks::FindItem(const Crossing &call) {
    const auto menu = mMenus.find(call["menu"].pointer);
    const auto index = static_cast<std::size_t>(call["index"].integer);
    return menu == mMenus.end() || index >= menu->second.size() ? nullptr : &menu->second[index];
}

void HostServiceChecks::AfterName(const Crossing &call) {
    Item *item = FindItem(call);
    if (!item)
        return;
    const int kind = KindOfName(call["name"]);
    item->isShown = kind != 0;
    mItems[item->id] = ReasonFor(kind);
}

void HostServiceChecks::AfterRemoval(const Crossing &call) {
    const Item *item = FindItem(call);
    if (!item)
        return;
    mItems[item->id] = kRemoved;
    std::vector<Item> &items = mMenus[call["menu"].pointer];
    items.erase(items.begin() + call["index"].integer);
}

void HostServiceChecks::AfterMenuDestruction(const Crossing &call) {
    const auto menu = mMenus.find(call["menu"].pointer);
    if (menu == mMenus.end())
        return;
    for (const Item &item : menu->second)
        mItems[item.id] = kRemoved;
    mMenus.erase(menu);
}

// IDs that the library never got are those of the host's own items.
void HostServiceChecks::BeforePick(const Crossing &call) {
    const int id = call["itemID"].integer;
    const auto item = mItems.find(id);
    if (item != mItems.end() && item->second)
        mFindings.Add(Named(kHostServiceRules, "host-item-picked"), call,
                      {{"why", item->second}, {"id", std::to_string(id)}});
}

// ---- Objects, probes and symbols

void HostServiceChecks::BeforeEvent(const Crossing &call) {
    if (call["event"].integer == AVSKHostEventFrame)
        ++mFrames;
}

void HostServiceChecks::BeforeLoad(const Crossing &call) {
    mLoads.insert_or_assign(call["argument"].pointer, Load{mFrames, crossings::WholeText(call["path"]), false});
}

void HostServiceChecks::BeforeCompletion(const Crossing &call) {
    const void *argument = call.arguments.back().pointer;
    const auto load = mLoads.find(argument);
    if (load == mLoads.end())
        mFindings.Add(Named(kHostServiceRules, "host-load-unknown"), call,
                      {kOneFinding, {"argument", Hexadecimal(argument)}});
    else if (std::exchange(load->second.isComplete, true))
        mFindings.Add(Named(kHostServiceRules, "host-load-twice"), call,
                      {kOneFinding, {"argument", Hexadecimal(argument)}});
}

void HostServiceChecks::Finish() {
    for (const auto &[argument, load] : mLoads) {
        if (!load.isComplete && mFrames - load.frame >= kPatience)
            mFindings.Add(Named(kHostServiceRules, "host-load-never"), "host",
                          {{"path", Quoted(load.path)}, {"frames", std::to_string(mFrames - load.frame)}});
    }
    mLoads.clear();
}

void HostServiceChecks::BeforeEnumerator(const Crossing &call) {
    if (call.from != Side::Host)
        return;
    if (!call.outer || std::string_view(call.outer->what.name) != "lookupObjects")
        mFindings.Add(Named(kHostServiceRules, "host-enumerator-late"), call);
    else
        ++mOpen.back().enumerated;
}

void HostServiceChecks::AfterLookup(const Crossing &call) {
    const int calls = mOpen.back().enumerated;
    const int count = call.result.integer;
    if (call["enumerator"].pointer && count >= 0 && count != calls)
        mFindings.Add(Named(kHostServiceRules, "host-enumerator-count"), call,
                      {kOneFinding, {"count", std::to_string(count)}, {"calls", std::to_string(calls)}});
}

void HostServiceChecks::AfterProbe(const Crossing &call) {
    if (!call.result.pointer)
        mFindings.Add(Named(kHostServiceRules, "host-handle-null"), call, {{"where", "instead of a probe"}});
}

void HostServiceChecks::AfterSymbol(const Crossing &call) {
    char byte = 0;
    const void *address = call.result.pointer;
    if (address && !crossings::ReadMemory(address, &byte, 1))
        mFindings.Add(Named(kHostServiceRules, "host-symbol"), call,
                      {{"name", Quoted(crossings::WholeText(call["name"]))}, {"address", Hexadecimal(address)}});
}

// ---- Counts and indices

void HostServiceChecks::AfterCount(const Crossing &call) {
    if (call.result.integer < 0)
        mFindings.Add(Named(kHostServiceRules, "host-count"), call,
                      {kOneFinding, {"count", std::to_string(call.result.integer)}});
}

void HostServiceChecks::AfterEntryCount(const Crossing &call) { mEntries = call.result.integer; }
void HostServiceChecks::AfterPlanChange(const Crossing & /*call*/) { mEntries.reset(); }

// In an empty plan the index is the host's choice.
void HostServiceChecks::AfterEntryIndex(const Crossing &call) {
    const int index = call.result.integer;
    if (mEntries.value_or(0) > 0 && (index < 0 || index >= *mEntries))
        mFindings.Add(Named(kHostServiceRules, "host-entry-index"), call,
                      {kOneFinding, {"index", std::to_string(index)}, {"count", std::to_string(*mEntries)}});
}

} // namespace host
