// The trace as a JSON array of trace events: a begin and an end for each call.
// Viewers also open it without its end, after a crash.
#include "Trace.h"

#include "Crossings/Format.h"
#include "Crossings/ValueText.h"
#include "Crossings/Words.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Line;
using crossings::Value;
using nlohmann::ordered_json;

ordered_json JsonOf(const Value &value) {
    if (value.kind == Value::Kind::Integer)
        return value.integer;
    if (value.kind == Value::Kind::Real)
        return value.real; // null if it is not a number
    Line line;
    crossings::AddValue(line, value);
    return std::string(line.Text());
}

ordered_json ArgumentsOf(const Crossing &crossing) {
    ordered_json arguments = ordered_json::object();
    std::string_view names = crossing.what.parameters;
    for (const Value &value : crossing.arguments) {
        const std::string_view name = crossings::TakeWord(names);
        arguments[std::string(name)] = JsonOf(value);
    }
    return arguments;
}

class JsonWriter : public TraceWriter {
  public:
    explicit JsonWriter(std::FILE *file) : mFile(file) {
        std::fputs("[\n", mFile);
        Write({{"name", "process_name"}, {"ph", "M"}, {"pid", 1}, {"tid", 1}, {"args", {{"name", "avsk"}}}});
    }
    ~JsonWriter() override { std::fputs("\n]\n", mFile); }

    void Begin(const Crossing &crossing, int /*depth*/) override {
        Line sides;
        crossings::AddSides(sides, crossing);
        Write({{"name", crossings::TitleOf(crossing)},
               {"cat", std::string(sides.Text())},
               {"ph", "B"},
               {"ts", Microseconds(crossing.began)},
               {"pid", 1},
               {"tid", 1},
               {"args", ArgumentsOf(crossing)}});
    }

    void End(const Crossing &crossing, int /*depth*/) override {
        ordered_json event{{"ph", "E"}, {"ts", Microseconds(crossing.ended)}, {"pid", 1}, {"tid", 1}};
        if (!crossing.returned)
            event["args"] = {{"result", "threw"}};
        else if (crossing.result.kind != Value::Kind::Nothing)
            event["args"] = {{"result", JsonOf(crossing.result)}};
        Write(event);
    }

  private:
    double Microseconds(Crossing::Clock::time_point time) const {
        return std::chrono::duration<double, std::micro>(time - mStart).count();
    }

    void Write(const ordered_json &event) {
        // Names come from plugins and may be no valid UTF-8.
        const std::string text = event.dump(-1, ' ', /*ensure_ascii=*/true, ordered_json::error_handler_t::replace);
        std::fprintf(mFile, "%s%s", mIsFirst ? "" : ",\n", text.c_str());
        mIsFirst = false;
    }

    std::FILE *mFile;
    const Crossing::Clock::time_point mStart = Crossing::Clock::now();
    bool mIsFirst = true;
};

} // namespace

std::unique_ptr<TraceWriter> MakeJsonWriter(std::FILE *file) { return std::make_unique<JsonWriter>(file); }

} // namespace host
