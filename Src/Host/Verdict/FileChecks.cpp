// The checks of files; see FileChecks.h. Called by Check.cpp before anything runs.
#include "FileChecks.h"

#include "Libraries.h"

#include "Common/Text.h"
#include "Elf/ElfFile.h"
#include "Elf/PluginFiles.h"
#include "Observing/Loading.h"
#include "Rules/FileRules.h"

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>

namespace host {
namespace {

constexpr std::size_t kMostNames = 4;

const Rule &RuleOf(PluginFault::Kind kind) {
    switch (kind) {
    case PluginFault::Kind::Unreadable:
        return Named(kFileRules, "file-unreadable");
    case PluginFault::Kind::Machine:
        return Named(kFileRules, "file-machine");
    case PluginFault::Kind::Mangled:
        return Named(kFileRules, "file-entry-mangled");
    case PluginFault::Kind::Hidden:
        return Named(kFileRules, "file-entry-hidden");
    case PluginFault::Kind::Misspelt:
        return Named(kFileRules, "file-entry-misspelt");
    default:
        return Named(kFileRules, "file-entry-missing");
    }
}

// Symbols that the linker makes in every file, and templates and inline functions
// of the standard library, which are equal in all files.
bool IsCommon(const std::string &name) {
    static const std::set<std::string_view> kOfTheLinker{"_init", "_fini", "_edata", "_end", "__bss_start"};
    static const std::regex kStandard("_Z(T[ISTVhv]|G[VR]|Z)*N?[KVRO]*(S[tabsiod]|9__gnu_cxx|10__cxxabiv1).*|"
                                      "_Zn[wa][jm]Pv|_Zd[la]PvS_");
    return kOfTheLinker.contains(name) || std::regex_match(name, kStandard);
}

// The names beside the entry points by which plugins can disturb each other.
std::vector<std::string> OwnExports(const ElfFile &file) {
    std::vector<std::string> names;
    std::copy_if(file.exported.begin(), file.exported.end(), std::back_inserter(names), [](const std::string &name) {
        return !IsEntryPoint(name) && !name.starts_with("AVPlugin") && !IsCommon(name);
    });
    return names;
}

std::vector<std::string> UnknownEntryPoints(const ElfFile &file, const std::vector<PluginFault> &faults) {
    std::vector<std::string> names;
    for (const std::string &name : file.exported) {
        const bool isTold = std::any_of(faults.begin(), faults.end(), [&name](const PluginFault &fault) {
            return fault.text.find(name) != std::string::npos;
        });
        if (name.starts_with("AVPlugin") && !IsEntryPoint(name) && !isTold)
            names.push_back(name);
    }
    return names;
}

struct File {
    ElfFile elf;
    std::vector<PluginFault> faults;
    std::vector<std::string> exports;

    bool IsLibrary() const {
        return std::none_of(faults.begin(), faults.end(), [](const PluginFault &fault) {
            return fault.kind == PluginFault::Kind::Unreadable || fault.kind == PluginFault::Kind::Machine;
        });
    }
};

void JudgeSharing(const std::vector<Target> &targets, const std::vector<File> &files, std::size_t index,
                  Findings &findings) {
    std::map<std::string, std::vector<std::string>> shared; // names, by the plugins that export them too
    for (const std::string &name : files[index].exports) {
        std::vector<std::string> others;
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (i != index && std::binary_search(files[i].exports.begin(), files[i].exports.end(), name))
                others.push_back(targets[i].name);
        }
        if (!others.empty())
            shared[Shortened(others, kMostNames)].push_back(name);
    }
    for (const auto &[others, names] : shared)
        findings.Add(Named(kFileRules, "file-shared"), targets[index].name,
                     {{"names", Shortened(names, kMostNames)}, {"others", others}});
}

void JudgeNeeds(const Target &target, const ElfFile &file, Libraries &libraries, Findings &findings) {
    const Libraries::Lack lack = libraries.LackOf(target.file, file);
    for (const std::string &library : lack.libraries)
        findings.Add(Named(kFileRules, "file-library"), target.name, {{"fault", LibraryFault(library)}});
    for (const std::string &symbol : lack.symbols)
        findings.Add(Named(kFileRules, "file-undefined"), target.name, {{"fault", SymbolFault(symbol)}});
}

void JudgeLinking(const Target &target, const File &file, Findings &findings) {
    const auto say = [&](const Rule &rule, FindingValues values = {}) { findings.Add(rule, target.name, values); };
    if (const auto unknown = UnknownEntryPoints(file.elf, file.faults); !unknown.empty())
        say(Named(kFileRules, "file-entry-unknown"), {{"names", Join(unknown)}});
    if (!file.exports.empty())
        say(Named(kFileRules, "file-exports"), {{"names", Shortened(file.exports, kMostNames)}});
    if (!file.elf.unique.empty())
        say(Named(kFileRules, "file-unique"), {{"names", Shortened(file.elf.unique, kMostNames)}});
    if (file.elf.isNeverUnloaded)
        say(Named(kFileRules, "file-stays"));
    if (file.elf.hasTextRelocations)
        say(Named(kFileRules, "file-text-relocations"));
    if (file.elf.hasExecutableStack)
        say(Named(kFileRules, "file-executable-stack"));
    if (!file.elf.hasFunctionNames || !file.elf.hasDebugLines)
        say(Named(kFileRules, "file-debug"),
            {{"what", file.elf.hasFunctionNames ? "line numbers" : "names of functions: it was stripped"}});
}

} // namespace

std::vector<std::vector<Finding>> JudgeFiles(const std::vector<Target> &targets) {
    Libraries libraries;
    std::vector<File> files;
    for (const Target &target : targets) {
        File file{ReadElf(target.file).file, FaultsOfPluginFile(target.file), {}};
        file.exports = OwnExports(file.elf);
        if (file.IsLibrary())
            libraries.Add(file.elf); // for the other plugins
        files.push_back(std::move(file));
    }
    std::vector<std::vector<Finding>> all;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const int frame = 0;
        Findings findings(frame, {});
        for (const PluginFault &fault : files[i].faults)
            findings.Add(RuleOf(fault.kind), targets[i].name, {{"fault", fault.text}});
        if (!targets[i].advice.empty())
            findings.Add(Named(kFileRules, "file-place"), targets[i].name, {{"advice", targets[i].advice}});
        if (files[i].IsLibrary()) {
            JudgeNeeds(targets[i], files[i].elf, libraries, findings);
            JudgeLinking(targets[i], files[i], findings);
            JudgeSharing(targets, files, i, findings);
        }
        all.push_back(findings.All());
    }
    return all;
}

bool PreventsLoading(const Finding &finding) {
    return finding.rule == &Named(kFileRules, "file-unreadable") || finding.rule == &Named(kFileRules, "file-machine");
}

} // namespace host
