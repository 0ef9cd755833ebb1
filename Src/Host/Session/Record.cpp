// Writes and reads records as JSON, one object a line; see Record.h.
#include "Record.h"

#include "Common/Files.h"
#include "Common/UsageError.h"
#include "Rules/RuleTable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <unistd.h>

namespace host {
namespace {

using Json = nlohmann::json;

void Write(int file, const Json &object) {
    // If it fails, the reader sees that the record has no end.
    WriteAll(file, object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

Finding FindingOf(const Json &object) {
    Finding finding;
    finding.rule = FindRule(object.at("rule").get<std::string>());
    finding.plugin = object.at("plugin");
    finding.function = object.at("function");
    finding.subject = object.at("subject");
    finding.text = object.at("text");
    finding.callback = object.at("callback");
    finding.source = object.at("source");
    finding.frame = object.at("frame");
    finding.count = object.at("count");
    return finding;
}

Inventory InventoryOf(const Json &object) {
    Inventory inventory;
    for (const Json &plugin : object.at("plugins"))
        inventory.plugins.push_back(
            {plugin.at("name"), plugin.at("signature"), plugin.at("path"), plugin.at("windows")});
    object.at("items").get_to(inventory.items);
    object.at("commands").get_to(inventory.commands);
    object.at("keys").get_to(inventory.keys);
    object.at("windows").get_to(inventory.windows);
    for (const Json &dataref : object.at("datarefs"))
        inventory.datarefs.push_back({dataref.at("name"), dataref.at("accessors"), dataref.at("writable")});
    return inventory;
}

void Read(const Json &object, Recorded &record) {
    const std::string kind = object.at("kind");
    if (kind == "finding") {
        record.findings.push_back(FindingOf(object));
    } else if (kind == "inventory") {
        record.inventories.push_back(InventoryOf(object));
    } else if (kind == "note") {
        record.notes.push_back(object.at("text"));
    } else if (kind == "end") {
        record.isWhole = true;
        const auto counts = object.at("counts").get<std::vector<long>>();
        for (std::size_t i = 0; i < std::min(counts.size(), record.findings.size()); ++i)
            record.findings[i].count = counts[i];
    } else {
        (kind == "fault" ? record.faults : record.failures).push_back({object.at("about"), object.at("text")});
    }
}

} // namespace

Record::Record(const std::string &file)
    : mFile(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666)) {
    if (mFile < 0)
        throw UsageError("--record: cannot write '" + file + "' (" + std::strerror(errno) + ")");
}

Record::~Record() { close(mFile); }

Json FindingJson(const Finding &finding) {
    return {{"rule", finding.rule->id},   {"plugin", finding.plugin}, {"function", finding.function},
            {"subject", finding.subject}, {"text", finding.text},     {"callback", finding.callback},
            {"source", finding.source},   {"frame", finding.frame},   {"count", finding.count}};
}

void Record::Add(const Finding &finding) {
    Json object = FindingJson(finding);
    object["kind"] = "finding";
    Write(mFile, object);
}

void Record::Add(const Inventory &inventory) {
    Json plugins = Json::array();
    for (const Inventory::Plugin &plugin : inventory.plugins)
        plugins.push_back({{"name", plugin.name},
                           {"signature", plugin.signature},
                           {"path", plugin.path},
                           {"windows", plugin.windows}});
    Json datarefs = Json::array();
    for (const Inventory::Dataref &dataref : inventory.datarefs)
        datarefs.push_back({{"name", dataref.name}, {"accessors", dataref.accessors}, {"writable", dataref.writable}});
    Write(mFile, {{"kind", "inventory"},
                  {"plugins", plugins},
                  {"items", inventory.items},
                  {"commands", inventory.commands},
                  {"keys", inventory.keys},
                  {"windows", inventory.windows},
                  {"datarefs", datarefs}});
}

void Record::AddFault(const std::string &path, const std::string &fault) {
    Write(mFile, {{"kind", "fault"}, {"about", path}, {"text", fault}});
}

void Record::AddFailure(const std::string &step, const std::string &why) {
    Write(mFile, {{"kind", "failure"}, {"about", step}, {"text", why}});
}

void Record::AddNote(const std::string &note) { Write(mFile, {{"kind", "note"}, {"text", note}}); }

void Record::End(const std::vector<Finding> &findings) {
    std::vector<long> counts;
    counts.reserve(findings.size());
    for (const Finding &finding : findings)
        counts.push_back(finding.count);
    Write(mFile, {{"kind", "end"}, {"counts", counts}});
}

Recorded ReadRecord(const std::string &file) {
    Recorded record;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        const Json object = Json::parse(line, nullptr, /*allow_exceptions=*/false);
        if (object.is_discarded()) // the process ended while it wrote
            break;
        Read(object, record);
    }
    std::erase_if(record.findings, [](const Finding &finding) { return !finding.rule; });
    return record;
}

} // namespace host
