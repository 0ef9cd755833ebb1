// The checks of datarefs; see DatarefChecks.h.
#include "DatarefChecks.h"

#include "DatarefRules.h"

#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Crossings/Callback.h"
#include "Crossings/ValueText.h"
#include "Observing/DatarefValues.h"

#include "AVSK/AVSKDataAccess.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;
using crossings::Value;

struct Type {
    int bit;
    const char *word;
    const char *suffix; // of the functions that read and write it: AVSKGetDatai
    const char *reader; // the parameters of AVSKRegisterDataAccessor
    const char *writer;
};
constexpr Type kTypes[] = {
    {AVSKDataTypeInt, "int", "i", "readInt", "writeInt"},
    {AVSKDataTypeFloat, "float", "f", "readFloat", "writeFloat"},
    {AVSKDataTypeDouble, "double", "d", "readDouble", "writeDouble"},
    {AVSKDataTypeIntArray, "int array", "vi", "readIntArray", "writeIntArray"},
    {AVSKDataTypeFloatArray, "float array", "vf", "readFloatArray", "writeFloatArray"},
    {AVSKDataTypeData, "data", "b", "readData", "writeData"},
};

// "AVSKSetDatavf": a write of the type "vf".
bool IsWrite(const Crossing &crossing) { return std::string_view(crossing.what.name).starts_with("AVSKSet"); }

const Type &TypeOf(const Crossing &crossing) {
    const std::string_view suffix = std::string_view(crossing.what.name).substr(std::size("AVSKGetData") - 1);
    return *std::find_if(std::begin(kTypes), std::end(kTypes),
                         [suffix](const Type &type) { return suffix == type.suffix; });
}

AVSKDataRef HandleOf(const Value &value) { return static_cast<AVSKDataRef>(const_cast<void *>(value.pointer)); }

bool IsPerFrame(const Crossing &code) {
    static constexpr std::string_view kPerFrame[] = {"AVSKFlightLoop_f", "AVSKDrawCallback_f", "AVSKDrawWindow_f",
                                                     "AVSKCameraControl_f"};
    return std::find(std::begin(kPerFrame), std::end(kPerFrame), code.what.name) != std::end(kPerFrame);
}

} // namespace

constexpr CallRow<DatarefChecks> DatarefChecks::kBefore[] = {
    {"AVSKGetDatai", &DatarefChecks::BeforeUse},
    {"AVSKGetDataf", &DatarefChecks::BeforeUse},
    {"AVSKGetDatad", &DatarefChecks::BeforeUse},
    {"AVSKGetDatavi", &DatarefChecks::BeforeUse},
    {"AVSKGetDatavf", &DatarefChecks::BeforeUse},
    {"AVSKGetDatab", &DatarefChecks::BeforeUse},
    {"AVSKSetDatai", &DatarefChecks::BeforeUse},
    {"AVSKSetDataf", &DatarefChecks::BeforeUse},
    {"AVSKSetDatad", &DatarefChecks::BeforeUse},
    {"AVSKSetDatavi", &DatarefChecks::BeforeUse},
    {"AVSKSetDatavf", &DatarefChecks::BeforeUse},
    {"AVSKSetDatab", &DatarefChecks::BeforeUse},
    {"AVSKRegisterDataAccessor", &DatarefChecks::BeforeRegistration},
    {"AVSKUnregisterDataAccessor", &DatarefChecks::BeforeUnregistration},
    {"AVSKGetDatavi_f", &DatarefChecks::BeforeAccessor},
    {"AVSKGetDatavf_f", &DatarefChecks::BeforeAccessor},
    {"AVSKGetDatab_f", &DatarefChecks::BeforeAccessor},
};

constexpr CallRow<DatarefChecks> DatarefChecks::kAfter[] = {
    {"AVSKRegisterDataAccessor", &DatarefChecks::AfterRegistration},
    {"AVSKShareData", &DatarefChecks::AfterSharing},
    {"AVSKFindDataRef", &DatarefChecks::AfterLookUp},
    {"AVSKGetDatavi_f", &DatarefChecks::AfterAccessor},
    {"AVSKGetDatavf_f", &DatarefChecks::AfterAccessor},
    {"AVSKGetDatab_f", &DatarefChecks::AfterAccessor},
    {"AVPluginStart", &DatarefChecks::AfterStart},
};

DatarefChecks::DatarefChecks(Findings &findings) : mFindings(findings), mBefore(kBefore), mAfter(kAfter) {
    crossings::AddObserver(*this);
}

DatarefChecks::~DatarefChecks() { crossings::RemoveObserver(*this); }

void DatarefChecks::Begins(const Crossing &crossing) { mBefore.Apply(*this, crossing); }
void DatarefChecks::Ends(const Crossing &crossing) { mAfter.Apply(*this, crossing); }

// ---- Reads and writes

void DatarefChecks::BeforeUse(const Crossing &crossing) {
    if (crossing.from != Side::Plugin)
        return;
    const bool isWrite = IsWrite(crossing);
    const char *done = isWrite ? "written" : "read";
    AVSKDataRef ref = HandleOf(crossing["ref"]);
    if (!ref)
        return mFindings.Add(Named(kDatarefRules, "dataref-null"), crossing, {{"done", done}});
    const auto entry = mKnown.find(ref);
    if (entry == mKnown.end())
        return mFindings.Add(Named(kDatarefRules, "dataref-handle"), crossing, {{"handle", Hexadecimal(ref)}});
    const Known &known = entry->second;
    const std::string name = Quoted(known.name);
    if (AVSKIsDataRefGood(ref) == 0)
        return mFindings.Add(Named(kDatarefRules, "dataref-unpublished"), crossing, {{"name", name}, {"done", done}});
    if (isWrite && AVSKCanWriteDataRef(ref) == 0)
        return mFindings.Add(Named(kDatarefRules, "dataref-readonly"), crossing, {{"name", name}});
    const Type &type = TypeOf(crossing);
    if (((isWrite ? known.writable : known.readable) & type.bit) == 0)
        return mFindings.Add(Named(kDatarefRules, "dataref-type"), crossing,
                             {{"name", name}, {"type", type.word}, {"done", done}, {"types", DatarefTypes(ref)}});
    if (crossing.arguments.size() == 4)
        CheckRange(known, crossing, done);
}

void DatarefChecks::CheckRange(const Known &known, const Crossing &crossing, const char *done) {
    const bool isWrite = IsWrite(crossing);
    const int offset = crossing["offset"].integer;
    const int count = crossing[isWrite ? "count" : "max"].integer;
    const bool asksLength = !isWrite && crossing.arguments[1].pointer == nullptr;
    const bool isNegative = offset < 0 || count < 0;
    const long long end = static_cast<long long>(offset) + count;
    // A reader may ask for more than there is. Shared arrays grow with writes.
    const bool isBeyond = known.length >= 0 && !known.owner.empty() &&
                          (isWrite ? end > known.length : count > 0 && offset >= known.length && known.length > 0);
    if (asksLength || (!isNegative && !isBeyond))
        return;
    mFindings.Add(Named(kDatarefRules, "dataref-range"), crossing,
                  {{"name", Quoted(known.name)},
                   {"length", known.length < 0 ? "an unknown number of" : std::to_string(known.length)},
                   {"first", std::to_string(offset)},
                   {"last", std::to_string(end - 1)},
                   {"done", done}});
}

// ---- Registration and look-up

void DatarefChecks::BeforeRegistration(const Crossing &crossing) {
    const std::string name = crossings::WholeText(crossing["name"]);
    AVSKDataRef present = crossing["name"].text ? FindPublished(name) : nullptr;
    if (present)
        mRefused.insert(&crossing);
    if (crossing.from != Side::Plugin || !crossing["name"].text)
        return;
    const std::string quoted = Quoted(name);
    if (present) {
        const auto known = mKnown.find(present);
        const std::string owner =
            known == mKnown.end() || known->second.owner.empty() ? "shared data" : known->second.owner;
        return mFindings.Add(Named(kDatarefRules, "dataref-taken"), crossing, {{"owner", owner}, {"name", quoted}});
    }
    if (name.find('/') == std::string::npos)
        mFindings.Add(Named(kDatarefRules, "dataref-name"), crossing, {{"name", quoted}});
    const int types = crossing["types"].integer;
    bool hasWriter = false;
    for (const Type &type : kTypes) {
        hasWriter = hasWriter || crossing[type.writer].pointer;
        if ((types & type.bit) != 0 && !crossing[type.reader].pointer)
            mFindings.Add(Named(kDatarefRules, "dataref-promise"), crossing,
                          {{"name", quoted}, {"promise", std::string("the type ") + type.word}});
    }
    if (crossing["writable"].integer != 0 && !hasWriter)
        mFindings.Add(Named(kDatarefRules, "dataref-promise"), crossing, {{"name", quoted}, {"promise", "writing"}});
}

void DatarefChecks::AfterRegistration(const Crossing &crossing) {
    const bool isRefused = mRefused.erase(&crossing) > 0;
    if (isRefused || !crossing.returned || !crossing.result.pointer)
        return;
    Known known;
    known.name = crossings::WholeText(crossing["name"]);
    known.owner = crossings::LabelOf(crossing.dispatched);
    for (const Type &type : kTypes) {
        known.readable |= crossing[type.reader].pointer ? type.bit : 0;
        known.writable |= crossing[type.writer].pointer ? type.bit : 0;
    }
    mPublished.insert(known.name);
    mKnown[crossing.result.pointer] = std::move(known);
}

void DatarefChecks::AfterSharing(const Crossing &crossing) {
    if (!crossing["name"].text)
        return;
    Known known;
    known.name = crossings::WholeText(crossing["name"]);
    AVSKDataRef ref = FindPublished(known.name);
    if (!ref || mKnown.contains(ref))
        return;
    known.readable = known.writable = AVSKGetDataRefTypes(ref);
    mPublished.insert(known.name);
    mKnown[ref] = std::move(known);
}

void DatarefChecks::BeforeUnregistration(const Crossing &crossing) {
    if (crossing.from != Side::Plugin)
        return;
    AVSKDataRef ref = HandleOf(crossing["ref"]);
    const auto known = mKnown.find(ref);
    if (!ref)
        mFindings.Add(Named(kDatarefRules, "dataref-null"), crossing, {{"done", "unregistered"}});
    else if (known == mKnown.end())
        mFindings.Add(Named(kDatarefRules, "dataref-handle"), crossing, {{"handle", Hexadecimal(ref)}});
    else if (AVSKIsDataRefGood(ref) == 0)
        mFindings.Add(Named(kDatarefRules, "dataref-unpublished"), crossing,
                      {{"name", Quoted(known->second.name)}, {"done", "unregistered"}});
    else if (known->second.owner != crossings::LabelOf(crossing.dispatched))
        mFindings.Add(Named(kDatarefRules, "dataref-foreign"), crossing,
                      {{"name", Quoted(known->second.name)},
                       {"owner", known->second.owner.empty() ? "nobody, because it is shared" : known->second.owner}});
}

void DatarefChecks::AfterLookUp(const Crossing &crossing) {
    const Crossing *code = PluginCodeOf(crossing);
    if (crossing.from != Side::Plugin || !code || !crossing["name"].text)
        return;
    const std::string name = crossings::WholeText(crossing["name"]);
    const Caller caller{code->plugin, code->callback, name};
    if (!crossing.result.pointer) {
        if (!mMisses.contains(caller)) {
            Finding unknown =
                mFindings.Make(Named(kDatarefRules, "dataref-unknown"), crossing, {{"name", Quoted(name)}});
            mMisses.emplace(caller, Miss{name, std::move(unknown)});
        } else {
            ++mMisses.at(caller).finding.count;
        }
        return;
    }
    constexpr int kManyFrames = 3;
    auto &[last, frames] = mLookUps[caller];
    if (IsPerFrame(*code) && (frames == 0 || last != mFindings.Frame())) {
        last = mFindings.Frame();
        if (++frames >= kManyFrames)
            mFindings.Add(Named(kDatarefRules, "dataref-lookup"), crossing, {{"name", Quoted(name)}});
    }
}

// A plugin that is loaded again looks its datarefs up again. It has its name now.
void DatarefChecks::AfterStart(const Crossing &crossing) {
    for (auto &[caller, miss] : mMisses) {
        if (std::get<0>(caller) == crossing.plugin)
            miss.finding.plugin = crossings::LabelOf(crossing.plugin);
    }
    std::erase_if(mLookUps, [&crossing](const auto &each) { return std::get<0>(each.first) == crossing.plugin; });
}

void DatarefChecks::Finish() {
    const std::vector<std::string> names(mPublished.begin(), mPublished.end());
    for (auto &[caller, miss] : mMisses) {
        if (mPublished.contains(miss.name))
            continue; // it was published later
        const std::vector<std::string> nearest = NearestNames(miss.name, names);
        if (!nearest.empty()) {
            const Rule &misspelt = Named(kDatarefRules, "dataref-misspelt");
            miss.finding.Become(misspelt, {{"name", Quoted(miss.name)}, {"nearest", Join(nearest)}});
        }
        mFindings.Add(std::move(miss.finding));
    }
    mMisses.clear();
}

// ---- Array accessors of plugins

namespace {

constexpr std::size_t kMostBytes = 1 << 16;

struct Buffer {
    const void *begin;
    int count;
    std::size_t elementSize;

    std::size_t Size() const { return static_cast<std::size_t>(count) * elementSize; }
};

Buffer BufferOf(const Crossing &accessor) {
    const bool isData = std::string_view(accessor.what.name) == "AVSKGetDatab_f";
    return {accessor.arguments[1].pointer, accessor["max"].integer, isData ? 1U : 4U};
}

std::vector<unsigned char> Contents(const Buffer &buffer) {
    std::vector<unsigned char> bytes(buffer.Size());
    if (!crossings::ReadMemory(buffer.begin, bytes.data(), bytes.size()))
        bytes.clear();
    return bytes;
}

} // namespace

void DatarefChecks::BeforeAccessor(const Crossing &crossing) {
    const Buffer buffer = BufferOf(crossing);
    if (crossing.to == Side::Plugin && buffer.begin && buffer.count > 0 && buffer.Size() <= kMostBytes)
        mReads.push_back({&crossing, Contents(buffer)});
}

void DatarefChecks::AfterAccessor(const Crossing &crossing) {
    const Crossing *read = crossing.outer;
    const auto known = read && !read->arguments.empty() ? mKnown.find(read->arguments[0].pointer) : mKnown.end();
    if (!crossing.arguments[1].pointer && crossing.returned && known != mKnown.end())
        known->second.length = crossing.result.integer;
    if (mReads.empty() || mReads.back().crossing != &crossing)
        return;
    const std::vector<unsigned char> before = std::move(mReads.back().before);
    mReads.pop_back();
    if (!crossing.returned)
        return;
    const Buffer buffer = BufferOf(crossing);
    const int returned = crossing.result.integer;
    const std::vector<unsigned char> after = Contents(buffer);
    int written = 0;
    for (std::size_t i = std::min(before.size(), after.size()); i > 0 && written == 0; --i) {
        if (before[i - 1] != after[i - 1])
            written = static_cast<int>((i - 1) / buffer.elementSize) + 1;
    }
    const auto say = [&](int number, const char *meant) {
        mFindings.Add(Named(kDatarefRules, "dataref-answer"), crossing,
                      {{"returned", std::to_string(returned)}, {"written", std::to_string(number)}, {"meant", meant}});
    };
    if (returned < 0 || returned > buffer.count)
        say(buffer.count, "asked for");
    else if (written > returned)
        say(written, "written");
}

} // namespace host
