// Counts what plugins ask of OpenGL; see OpenGLUsage.h. Made by the commands whose
// option asks for it.
#include "OpenGLUsage.h"

#include "CallbackTable.h"
#include "Observers.h"

#include "Crossings/Callback.h"
#include "Crossings/Format.h"
#include "Crossings/ValueText.h"
#include "Crossings/Words.h"
#include "OpenGL/Context.h"
#include "OpenGL/Prototypes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Interest;
using crossings::Prototype;
using crossings::Value;

// How the vertices of a call are counted.
enum class Counting : std::uint8_t {
    None,
    One,
    Four,
    Count,    // an argument
    Multiple, // an array of counts
    NewList,
    EndList,
    CallList,
    CallLists,
    ListBase,
};

Counting CountingOf(std::string_view name) {
    if (name == "glNewList" || name == "glEndList")
        return name == "glNewList" ? Counting::NewList : Counting::EndList;
    if (name == "glCallList" || name == "glCallLists")
        return name == "glCallList" ? Counting::CallList : Counting::CallLists;
    if (name == "glListBase")
        return Counting::ListBase;
    constexpr std::string_view kVertex = "glVertex";
    if (name.starts_with(kVertex) && name.size() > kVertex.size() && name[kVertex.size()] <= '4')
        return Counting::One; // glVertex2f and so on
    if (name.starts_with("glArrayElement"))
        return Counting::One;
    if (name.starts_with("glRect"))
        return Counting::Four;
    if (name.find("Indirect") != std::string_view::npos)
        return Counting::None; // the counts are in a buffer
    if (name.starts_with("glMultiDraw"))
        return Counting::Multiple;
    return name.starts_with("glDrawArrays") || name.starts_with("glDrawElements") ||
                   name.starts_with("glDrawRangeElements")
               ? Counting::Count
               : Counting::None;
}

Counting CountingOf(const Prototype &function) {
    static const auto all = [] {
        std::array<Counting, opengl::kFunctionCount> countings{};
        for (std::size_t i = 0; i < countings.size(); ++i)
            countings[i] = CountingOf(opengl::kFunctions[i].Name());
        return countings;
    }();
    return all[opengl::NumberOf(function)];
}

// The argument of one of these names; null if there is none.
const Value *Argument(const Crossing &call, std::initializer_list<std::string_view> names) {
    std::string_view parameters = call.what.parameters;
    for (const Value &value : call.arguments) {
        if (crossings::IsOneOf(crossings::TakeWord(parameters), names))
            return &value;
    }
    return nullptr;
}

int Positive(const Value *value) { return value ? std::max(value->integer, 0) : 0; }

std::int64_t CountOf(const Crossing &call) {
    const Value *instances = Argument(call, {"instancecount", "primcount"});
    return std::int64_t{Positive(Argument(call, {"count"}))} * (instances ? Positive(instances) : 1);
}

std::int64_t SumOfCounts(const Crossing &call) {
    const Value *counts = Argument(call, {"count"});
    std::vector<int> numbers(static_cast<std::size_t>(Positive(Argument(call, {"drawcount", "primcount"}))));
    if (!counts || !crossings::ReadMemory(counts->pointer, numbers.data(), numbers.size() * sizeof(int)))
        return 0;
    std::int64_t sum = 0;
    for (const int number : numbers)
        sum += std::max(number, 0);
    return sum;
}

// Numbers of lists as glCallLists takes them.
unsigned ListAt(const unsigned char *bytes, GLenum type) {
    const auto as = [bytes]<class T>(T value) {
        std::memcpy(&value, bytes, sizeof value);
        return static_cast<unsigned>(static_cast<int>(value));
    };
    switch (type) {
    case GL_BYTE:
        return as(GLbyte{});
    case GL_UNSIGNED_BYTE:
        return bytes[0];
    case GL_SHORT:
        return as(GLshort{});
    case GL_UNSIGNED_SHORT:
        return as(GLushort{});
    case GL_FLOAT:
        return as(GLfloat{});
    case GL_2_BYTES:
        return bytes[0] * 256U + bytes[1];
    case GL_3_BYTES:
        return (bytes[0] * 256U + bytes[1]) * 256U + bytes[2];
    case GL_4_BYTES:
        return ((bytes[0] * 256U + bytes[1]) * 256U + bytes[2]) * 256U + bytes[3];
    default:
        return as(GLint{});
    }
}

std::size_t SizeOf(GLenum type) {
    switch (type) {
    case GL_BYTE:
    case GL_UNSIGNED_BYTE:
        return 1;
    case GL_SHORT:
    case GL_UNSIGNED_SHORT:
    case GL_2_BYTES:
        return 2;
    case GL_3_BYTES:
        return 3;
    default:
        return 4;
    }
}

} // namespace

OpenGLUsage::OpenGLUsage() { crossings::AddObserver(*this); }
OpenGLUsage::~OpenGLUsage() { crossings::RemoveObserver(*this); }

Interest OpenGLUsage::InterestIn(const Prototype &function) const {
    const bool ends = function.name == std::string_view("AVSKShutdownPlugins");
    const bool isStart = function.form == Prototype::Form::Start;
    return ends || isStart || OpenGLObjects::Concerns(function) ? Interest::Work : Interest::None;
}

Interest OpenGLUsage::InterestInOpenGL(const Prototype & /*function*/) const { return Interest::Work; }

void OpenGLUsage::Begins(const Crossing &call) {
    if (call.IsStart())
        mStarting.push_back(crossings::LabelOf(call.plugin));
}

void OpenGLUsage::Ends(const Crossing &call) {
    if (call.what.name == std::string_view("AVSKShutdownPlugins"))
        return AddObjects();
    if (call.IsStart())
        return Rename(call.plugin);
    mObjects.Note(call);
    if (call.what.form != Prototype::Form::OpenGL)
        return;
    Row &row = RowOf(call);
    ++row.calls;
    const std::int64_t vertices = VerticesOf(call);
    if (mList)
        mLists[*mList] += vertices;
    if (!mList || mIsListDrawn)
        row.vertices += vertices;
}

void OpenGLUsage::Rename(AVSKPluginID plugin) {
    auto rows = mRows.extract(mStarting.back());
    mStarting.pop_back();
    mKnown.clear(); // the plugin may have the ID of an unloaded one
    mObjects.Rename(plugin);
    if (!rows)
        return;
    for (const auto &[callback, row] : rows.mapped()) {
        Row &sum = mRows[crossings::LabelOf(plugin)][callback];
        sum.calls += row.calls;
        sum.vertices += row.vertices;
    }
}

OpenGLUsage::Row &OpenGLUsage::RowOf(const Crossing &call) {
    const Crossing *callback = CallbackOf(call);
    if (!callback)
        return mRows[crossings::LabelOf(call.plugin)][TitleOfCallback(nullptr)];
    const std::size_t number = callback->callback->number;
    if (number >= mKnown.size())
        mKnown.resize(number + 1);
    Known &known = mKnown[number];
    if (!known.row || known.plugin != callback->plugin)
        known = {callback->plugin, &mRows[crossings::LabelOf(callback->plugin)][TitleOfCallback(callback)]};
    return *known.row;
}

std::int64_t OpenGLUsage::VerticesOf(const Crossing &call) {
    switch (CountingOf(call.what)) {
    case Counting::None:
        return 0;
    case Counting::One:
        return 1;
    case Counting::Four:
        return 4;
    case Counting::Count:
        return CountOf(call);
    case Counting::Multiple:
        return SumOfCounts(call);
    case Counting::NewList:
        mList = call.arguments[0].word;
        mIsListDrawn = call.arguments[1].word == GL_COMPILE_AND_EXECUTE;
        mLists[*mList] = 0;
        return 0;
    case Counting::EndList:
        mList.reset();
        return 0;
    case Counting::CallList:
    case Counting::CallLists:
        return CountLists(call);
    case Counting::ListBase:
        mListBase = call.arguments[0].word;
        return 0;
    }
    return 0;
}

std::int64_t OpenGLUsage::CountLists(const Crossing &call) const {
    const auto verticesOf = [this](unsigned list) {
        const auto found = mLists.find(list);
        return found == mLists.end() ? 0 : found->second;
    };
    if (call.arguments.size() == 1)
        return verticesOf(call.arguments[0].word);
    const GLenum type = call.arguments[1].word;
    const auto count = static_cast<std::size_t>(std::max(call.arguments[0].integer, 0));
    std::vector<unsigned char> bytes(count * SizeOf(type));
    if (!crossings::ReadMemory(call.arguments[2].pointer, bytes.data(), bytes.size()))
        return 0;
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += verticesOf(mListBase + ListAt(&bytes[i * SizeOf(type)], type));
    return sum;
}

void OpenGLUsage::AddObjects() {
    if (!opengl::HasContext())
        return;
    for (const auto &[object, maker] : mObjects.All()) {
        if (!OpenGLObjects::Exists(object))
            continue;
        Row &row = mRows[maker.label][maker.callback];
        row.textures += object.first == OpenGLObjects::Kind::Texture ? 1 : 0;
        row.bytes += OpenGLObjects::BytesOf(object);
    }
}

void OpenGLUsage::Print() const {
    const CallbackTable table(mRows, [](const Row &row) { return row.vertices; });
    std::vector<std::string> lines;
    if (!table.entries.empty())
        lines.push_back(Formatted("%-*s  %9s  %11s  %13s  %9s  %s", table.width, "plugin", "calls", "vertices",
                                  "textures kept", "kB kept", "callback"));
    for (const auto &[plugin, callback, row] : table.entries)
        lines.push_back(Formatted("%-*s  %9ld  %11lld  %13d  %9lld  %s", table.width, plugin.c_str(), row.calls,
                                  static_cast<long long>(row.vertices), row.textures,
                                  static_cast<long long>((row.bytes + 1023) / 1024), callback.c_str()));
    PrintList("\nOpenGL of plugins:", lines, "none");
}

} // namespace host
