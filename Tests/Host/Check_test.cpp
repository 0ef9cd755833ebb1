// `avsk check`: each rule about files and runs is found in its own misfit, and
// plugins that end the process are results like others.
#include "RunAvsk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Rules = std::set<std::string>;

std::string Misfit(const std::string &fault) { return AVSK_TEST_MISFITS "/" + fault + ".avp"; }

AvskRun Check(const std::string &arguments) { return RunAvsk("check --timeout 2 " + arguments); }

Rules RulesIn(const std::string &said) {
    Rules rules;
    static const std::regex finding(R"(\n  (?:error|warning|note): .*\(([a-z-]+)\))");
    for (std::sregex_iterator match(said.begin(), said.end(), finding); match != std::sregex_iterator(); ++match)
        rules.insert((*match)[1]);
    return rules;
}

std::string Python(const std::string &script) {
    std::string said;
    std::FILE *output = popen(("python3 -c '" + script + "' 2>&1").c_str(), "r");
    for (int c = 0; output && (c = std::fgetc(output)) != EOF;)
        said += static_cast<char>(c);
    if (output)
        pclose(output);
    return said;
}

TEST(Check, EachRuleIsFoundInItsOwnMisfitOnly) {
    const std::string misplaced = testing::TempDir() + "Misplaced.so";
    std::filesystem::copy_file(Misfit("GOOD"), misplaced, std::filesystem::copy_options::overwrite_existing);
    const std::string file = " --scenario file";
    const std::string start = file + " --scenario start";
    const std::vector<std::tuple<std::string, Rules, int>> misfits = {
        {Misfit("GOOD"), {}, 0},
        {AVSK_TEST_ZOO "/NotALibrary.avp", {"file-unreadable"}, 1},
        {Misfit("WIDE"), {"file-machine"}, 1},
        {Misfit("STARTLESS") + file, {"file-entry-missing"}, 1},
        {Misfit("MISSPELT") + file, {"file-entry-misspelt"}, 1},
        {Misfit("MANGLED") + file, {"file-entry-mangled", "file-exports"}, 1},
        {Misfit("HIDDEN") + file, {"file-entry-hidden"}, 1},
        {Misfit("UNKNOWN") + file, {"file-entry-unknown"}, 1},
        {Misfit("UNDEFINED") + file, {"file-undefined"}, 1},
        {Misfit("LIBRARY") + file, {"file-library"}, 1},
        {Misfit("EXPORTS") + file, {"file-exports"}, 1},
        {Misfit("EXPORTS") + " " + Misfit("SHARES") + file, {"file-exports", "file-shared"}, 1},
        {Misfit("UNIQUE") + file, {"file-exports", "file-unique"}, 1},
        {Misfit("STAYS") + file, {"file-stays"}, 1},
        {Misfit("RELOCATED") + file, {"file-text-relocations"}, 1},
        {Misfit("STACK") + file, {"file-executable-stack"}, 1},
        {Misfit("BARE") + file, {"file-debug"}, 1},
        {misplaced + file, {"file-place"}, 1},
        {Misfit("DISABLED") + start, {"run-load"}, 1},
        {Misfit("REFUSES") + " --scenario enable", {"run-enable"}, 1},
        {Misfit("CRASHES"), {"run-crash"}, 3},
        {Misfit("HANGS"), {"run-hang"}, 3},
        {Misfit("GROWS") + " --scenario reload", {"memory-grows"}, 1},
    };
    const std::string list = RunAvsk("explain").said;
    Rules listed;
    static const std::regex row(R"(\n  ((?:file|run|memory)-[a-z-]+) )");
    for (std::sregex_iterator match(list.begin(), list.end(), row); match != std::sregex_iterator(); ++match)
        listed.insert((*match)[1]);
    Rules inhabited;
    for (const auto &[arguments, rules, status] : misfits) {
        inhabited.insert(rules.begin(), rules.end());
        const AvskRun run = Check("--level 3 " + arguments);
        EXPECT_EQ(RulesIn("\n" + run.said), rules) << run.said;
        EXPECT_EQ(run.status, status) << run.said;
    }
    EXPECT_EQ(inhabited, listed) << "each rule about files and runs has a misfit";
}

TEST(Check, SamplesPass) {
    const AvskRun run = Check(AVSK_TEST_DEMO);
    EXPECT_EQ(run.status, 0) << run.said;
    EXPECT_NE(run.said.find("\nRESULT: PASS 17 plugins: "), std::string::npos) << run.said;
}

TEST(Check, LevelAndRulesDecideWhatFails) {
    const std::string both = Misfit("EXPORTS") + " " + Misfit("SHARES") + " --scenario file ";
    const std::vector<std::tuple<std::string, int, std::string>> cases = {
        {"", 1, "RESULT: FAIL 2 of 2 plugins: 2 warnings, 2 notes; 2 scenarios"},
        {"--level 1", 0, "RESULT: PASS 2 plugins: 2 warnings, 2 notes; "},
        {"--except file-shared", 0, "RESULT: PASS 2 plugins: 2 notes; "},
        {"--except file-shared --level 3", 1, "RESULT: FAIL 2 of 2 plugins: 2 notes; "},
        {"--only file-debug --level 3", 0, "RESULT: PASS 2 plugins: no findings; "},
    };
    for (const auto &[options, status, result] : cases) {
        const AvskRun run = Check(both + options);
        EXPECT_EQ(run.status, status) << options;
        EXPECT_NE(run.said.find(result), std::string::npos) << run.said;
    }
}

TEST(Check, DeathsLoseNoOtherResult) {
    const std::string json = testing::TempDir() + "check.json";
    const std::string junit = testing::TempDir() + "check.xml";
    const AvskRun run = Check(Misfit("CRASHES") + " " + Misfit("HANGS") + " " + Misfit("ODD") + " " + Misfit("GOOD") +
                              " --level 3 --json " + json + " --junit " + junit);
    EXPECT_EQ(run.status, 3) << run.said;
    EXPECT_NE(run.said.find("| avsk: plugin 'M' died of SIGSEGV"), std::string::npos) << run.said;
    EXPECT_NE(run.said.find("again: avsk check " + Misfit("CRASHES") + " --scenario start"), std::string::npos);
    EXPECT_NE(run.said.find("\nRESULT: FAIL "), std::string::npos);
    EXPECT_EQ(Python("import json; r = json.load(open(\"" + json +
                     "\")); print(r[\"result\"], r[\"status\"], "
                     "[(p[\"name\"], p[\"passed\"], [f[\"rule\"] for f in p[\"findings\"]]) for p in r[\"plugins\"]])"),
              "FAIL 3 [('CRASHES', False, ['run-crash']), ('HANGS', False, ['run-hang']), ('ODD', False, "
              "['run-load']), ('GOOD', True, []), ('together', True, [])]\n");
    EXPECT_EQ(
        Python("import xml.etree.ElementTree as x; r = x.parse(\"" + junit +
               "\").getroot(); print([(s.get(\"name\"), len(s), s.get(\"failures\"), len(s.findall(\".//error\")), "
               "len(s.findall(\".//skipped\"))) for s in r])"),
        "[('CRASHES', 12, '0', 1, 10), ('HANGS', 12, '0', 1, 10), ('ODD', 12, '1', 0, 3), ('GOOD', 12, '0', 0, "
        "3), ('together', 1, '0', 0, 0)]\n");
}

TEST(Check, MonkeysFailureIsReproducedByItsSession) {
    const AvskRun run = Check(Misfit("FAR") + " --minutes 1");
    EXPECT_EQ(run.status, 3) << run.said;
    EXPECT_EQ(RulesIn("\n" + run.said), Rules{"run-crash"}) << run.said;
    const std::string path = testing::TempDir() + "monkey.avs";
    std::istringstream lines(run.said.substr(run.said.find("this session shows it")));
    std::ofstream session(path);
    int count = -1; // without the line of the plugin
    std::string line;
    for (std::getline(lines, line); std::getline(lines, line) && line.starts_with("      "); ++count)
        session << line << '\n';
    session.close();
    EXPECT_EQ(count, 2) << run.said;
    const AvskRun again = RunAvsk("run --check --quiet " + path);
    EXPECT_EQ(again.status, 3) << again.said;
    EXPECT_NE(again.said.find("died of SIGSEGV"), std::string::npos) << again.said;
}

TEST(Check, OneScenarioRunsInThisProcess) {
    const AvskRun run = Check(Misfit("FAR") + " --scenario messages --in-process");
    EXPECT_EQ(run.status, 0) << run.said;
    EXPECT_NE(run.said.find("FAR.messages.avs: 12 frames, 24 steps, 0 expectations, 0 failed"), std::string::npos)
        << run.said;
}

TEST(Check, WrongRequestsAreRefused) {
    const std::string good = Misfit("GOOD");
    const std::vector<std::pair<std::string, std::string>> requests = {
        {"", "name a plugin"},
        {AVSK_TEST_MISFITS "/GOD.avp", "no file or folder '" AVSK_TEST_MISFITS "/GOD.avp'; did you mean 'GOOD.avp'"},
        {AVSK_TEST_PICTURES, "no plugin in '" AVSK_TEST_PICTURES "'"},
        {good + " --only file-shred", "no rule 'file-shred'; did you mean 'file-shared'"},
        {good + " --scenario windos", "no scenario 'windos'; did you mean 'windows'?"},
        {good + " --in-process", "--in-process: runs one scenario of one plugin"},
        {good + " --level 4", "--level"},
        {good + " --json /nowhere/check.json", "--json: cannot write '/nowhere/check.json'"},
        {good + " --sessions /proc/nowhere", "--sessions: cannot write into"},
    };
    for (const auto &[arguments, text] : requests) {
        const AvskRun run = RunAvsk("check " + arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_NE(run.said.find(text), std::string::npos) << run.said;
        EXPECT_EQ(run.said.find('\n'), run.said.size() - 1) << run.said;
    }
}

} // namespace
