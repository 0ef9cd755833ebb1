// Runs the scenarios of all plugins; see Check.h. Called by `avsk check`.
#include "Check.h"

#include "Child.h"
#include "FileChecks.h"
#include "Pool.h"
#include "Scenarios.h"
#include "Shrink.h"

#include "Common/NearestName.h"
#include "Common/Terminal.h"
#include "Common/Text.h"
#include "Common/UsageError.h"
#include "Rules/RuleTable.h"
#include "Rules/RunRules.h"
#include "Session/RunSession.h"
#include "Session/Values.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>
#include <thread>
#include <utility>

#include <unistd.h>

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMonkeySteps = 150; // of one session
constexpr double kShrinkSeconds = 20;

double Since(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

// One plugin, or all of them together.
struct Subject {
    std::vector<Target> targets;
    std::string name; // as a word of sessions and a part of file names
    PluginVerdict verdict;
    Stage stage;
    bool startsWell = false; // it is enabled after the start
    int waiting = 0;         // scenarios under way, without the monkey

    bool HasStarted() const { return !stage.plugin.empty(); }
};

bool IsChosen(const std::vector<std::string> &names, std::string_view name) {
    return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
}

std::string FileNameOf(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isalnum(c) == 0 && c != '-' && c < 0x80; }, '_');
    return text;
}

Finding MakeFinding(const Rule &rule, const std::string &plugin, FindingValues values) {
    const int frame = 0;
    Findings findings(frame, {});
    findings.Add(rule, plugin, values);
    return findings.All().front();
}

class Checking {
  public:
    explicit Checking(const CheckOptions &options)
        : mOptions(options), mFolder(options.folder), mTargets(FindTargets(options.paths)),
          mJobs(options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency())) {
        MakeWorld(mFolder.Path());
        for (const Target &target : mTargets)
            AddSubject({target}, target.name);
    }

    Verdict Run() {
        const Clock::time_point begin = Clock::now();
        const std::vector<std::vector<Finding>> files = JudgeFiles(mTargets);
        for (std::size_t i = 0; i < mTargets.size(); ++i)
            BeginWith(*mSubjects[i], files[i]);
        mPool.Run(mJobs);
        if (IsChosen(mOptions.scenarios, kTogetherScenario))
            RunTogether();
        ClearProgress();
        Verdict verdict;
        verdict.level = static_cast<Level>(mOptions.level);
        for (const auto &subject : mSubjects) {
            Arrange(subject->verdict);
            verdict.plugins.push_back(std::move(subject->verdict));
        }
        verdict.seconds = Since(begin);
        return verdict;
    }

    // The session of the one chosen scenario.
    std::string WriteSession() {
        if (mTargets.size() != 1 || mOptions.scenarios.size() != 1 || mOptions.scenarios[0] == kFileScenario)
            throw UsageError("--in-process: runs one scenario of one plugin: name one plugin and --scenario NAME, with "
                             "NAME one of " +
                             Join(ScenarioNames()));
        Subject &subject = *mSubjects.front();
        const Scenario &scenario = *FindScenario(mOptions.scenarios[0]);
        if (scenario.name != kStartScenario)
            Explore(subject, RunLines(subject, std::string(kStartScenario), StartLines(subject)));
        const std::vector<std::string> steps = scenario.name == kMonkeyScenario
                                                   ? MonkeyLines(subject.stage, mOptions.seed, kMonkeySteps)
                                                   : scenario.lines(subject.stage);
        if (steps.empty())
            throw UsageError("--in-process: the plugin makes nothing that the scenario '" + std::string(scenario.name) +
                             "' could use");
        std::string path = mFolder.Path() + "/" + NameFor(subject, scenario.name) + ".avs";
        std::ofstream file(path);
        for (const std::string &line : WithHead(subject, steps))
            file << line << '\n';
        return path;
    }

  private:
    void AddSubject(std::vector<Target> targets, std::string name) {
        auto subject = std::make_unique<Subject>();
        subject->verdict.target = targets.size() == 1 ? targets[0] : Target{"", "", name, "", ""};
        subject->targets = std::move(targets);
        subject->name = std::move(name);
        subject->stage.folder = mFolder.Path();
        mSubjects.push_back(std::move(subject));
    }

    // ---- Sessions

    static std::string NameFor(const Subject &subject, std::string_view scenario) {
        return FileNameOf(subject.name) + (subject.name == scenario ? "" : "." + std::string(scenario));
    }

    static std::vector<std::string> WithHead(const Subject &subject, const std::vector<std::string> &steps) {
        std::vector<std::string> lines = HeadOf(subject.targets);
        lines.insert(lines.end(), steps.begin(), steps.end());
        return lines;
    }

    static std::vector<std::string> StartLines(const Subject &subject) {
        return FindScenario(kStartScenario)->lines(subject.stage);
    }

    ChildRun RunLines(const Subject &subject, const std::string &scenario, const std::vector<std::string> &steps) {
        return RunInChild(mFolder, NameFor(subject, scenario), WithHead(subject, steps), mOptions.timeout);
    }

    std::string CommandFor(const Subject &subject, std::string_view scenario) const {
        std::string command = "avsk check";
        for (const std::string &path :
             scenario == kTogetherScenario ? mOptions.paths : std::vector<std::string>{subject.targets[0].path}) {
            const bool isPlain = path.find_first_of(" '\"\\$&|;<>()*?[]#~`!") == std::string::npos;
            command += isPlain ? " " + path : " " + Written(path);
        }
        command += " --scenario " + std::string(scenario);
        return scenario == kMonkeyScenario ? command + " --seed " + std::to_string(mOptions.seed) : command;
    }

    // ---- Order of the runs

    void BeginWith(Subject &subject, const std::vector<Finding> &inFile) {
        if (IsChosen(mOptions.scenarios, kFileScenario)) {
            for (const Finding &finding : inFile)
                Keep(subject, finding, kFileScenario);
            subject.verdict.runs.push_back({std::string(kFileScenario), ScenarioRun::Result::Ran, 0});
        }
        const bool canLoad = std::none_of(inFile.begin(), inFile.end(), PreventsLoading);
        const bool isOnlyFile = mOptions.scenarios == std::vector<std::string>{std::string(kFileScenario)};
        if (!canLoad)
            return SkipRest(subject);
        if (!isOnlyFile)
            mPool.Push([this, &subject] { RunStart(subject); });
    }

    void RunStart(Subject &subject) {
        const ChildRun run = RunLines(subject, std::string(kStartScenario), StartLines(subject));
        const std::scoped_lock lock(mMutex);
        if (IsChosen(mOptions.scenarios, kStartScenario) || run.ending != Ending::Whole)
            Note(subject, kStartScenario, run);
        if (!Explore(subject, run))
            return SkipRest(subject);
        for (const Scenario &scenario : Scenarios()) {
            if (!scenario.lines || scenario.name == kStartScenario || scenario.name == kTogetherScenario ||
                !IsChosen(mOptions.scenarios, scenario.name))
                continue;
            std::vector<std::string> steps = scenario.lines(subject.stage);
            if (steps.empty()) {
                subject.verdict.runs.push_back({std::string(scenario.name), ScenarioRun::Result::Empty, 0});
                continue;
            }
            ++subject.waiting;
            mPool.Push([this, &subject, &scenario, steps = std::move(steps)] {
                const ChildRun child = RunLines(subject, std::string(scenario.name), steps);
                const std::scoped_lock hold(mMutex);
                Note(subject, scenario.name, child);
                --subject.waiting;
                StartMonkeyIfLast(subject);
            });
        }
        StartMonkeyIfLast(subject);
    }

    // The monkey comes last, because it tells only what the other scenarios did not.
    void StartMonkeyIfLast(Subject &subject) {
        if (subject.waiting == 0 && IsChosen(mOptions.scenarios, kMonkeyScenario))
            mPool.Push([this, &subject] { RunMonkey(subject); });
    }

    // All plugins that start. Two with the same file name cannot be loaded into one root.
    void RunTogether() {
        std::vector<Target> targets;
        std::set<std::string> names;
        for (const auto &subject : mSubjects) {
            if (subject->HasStarted() && names.insert(LinkOf(subject->targets[0])).second)
                targets.push_back(subject->targets[0]);
        }
        if (targets.size() < 2)
            return;
        AddSubject(std::move(targets), std::string(kTogetherScenario));
        Subject &together = *mSubjects.back();
        const ChildRun run =
            RunLines(together, std::string(kTogetherScenario), FindScenario(kTogetherScenario)->lines(together.stage));
        Note(together, kTogetherScenario, run);
        Distribute(together);
    }

    static std::string LinkOf(const Target &target) {
        const std::size_t packed = target.file.rfind("/lin.avp");
        const std::string path = target.file.substr(0, packed);
        return path.substr(path.rfind('/') + 1);
    }

    // Learns from the first run what the plugin makes. False if it does not start.
    static bool Explore(Subject &subject, const ChildRun &run) {
        if (run.ending != Ending::Whole || run.record.inventories.empty() ||
            run.record.inventories.back().plugins.empty())
            return false;
        subject.startsWell = run.record.faults.empty();
        subject.stage.made = run.record.inventories.back();
        const Inventory::Plugin &plugin = subject.stage.made.plugins.front();
        subject.stage.plugin = Written(plugin.signature); // more distinct than the name
        return true;
    }

    void SkipRest(Subject &subject) const {
        for (const Scenario &scenario : Scenarios()) {
            const auto isKnown = [&scenario](const ScenarioRun &run) { return run.name == scenario.name; };
            if (scenario.name != kTogetherScenario && IsChosen(mOptions.scenarios, scenario.name) &&
                std::none_of(subject.verdict.runs.begin(), subject.verdict.runs.end(), isKnown))
                subject.verdict.runs.push_back({std::string(scenario.name), ScenarioRun::Result::Skipped, 0});
        }
    }

    // ---- The monkey

    void RunMonkey(Subject &subject) {
        const Clock::time_point begin = Clock::now();
        ScenarioRun result{std::string(kMonkeyScenario), ScenarioRun::Result::Ran, 0};
        for (unsigned seed = mOptions.seed;; ++seed) {
            std::vector<std::string> steps = MonkeyLines(subject.stage, seed, kMonkeySteps);
            const ChildRun run = RunLines(subject, std::string(kMonkeyScenario), steps);
            const std::vector<Finding> all = FindingsOf(subject, run, kMonkeyScenario);
            const auto fresh = std::find_if(all.begin(), all.end(), [&](const Finding &finding) {
                const std::scoped_lock lock(mMutex);
                return IsWanted(finding) && finding.rule->level <= static_cast<Level>(mOptions.level) &&
                       !FindFound(subject, finding);
            });
            const std::optional<Finding> wanted = fresh == all.end() ? std::nullopt : std::optional(*fresh);
            if (wanted)
                steps = ShrinkFor(subject, *wanted, std::move(steps));
            const std::scoped_lock lock(mMutex);
            Note(subject, kMonkeyScenario, run, /*isCounted=*/false);
            if (run.ending != Ending::Whole)
                result.result = run.ending == Ending::Hang ? ScenarioRun::Result::Hung : ScenarioRun::Result::Crashed;
            if (Found *found = wanted ? FindFound(subject, *wanted) : nullptr) {
                found->session = WithHead(subject, steps);
                found->repeat = CommandFor(subject, kMonkeyScenario);
                if (seed != mOptions.seed)
                    found->repeat.replace(found->repeat.rfind(' ') + 1, std::string::npos, std::to_string(seed));
            }
            if (wanted || run.ending != Ending::Whole || Since(begin) >= mOptions.minutes * 60)
                break;
        }
        const std::scoped_lock lock(mMutex);
        result.seconds = Since(begin);
        subject.verdict.runs.push_back(result);
        ShowProgress(subject, kMonkeyScenario);
    }

    // The fewest steps found that cause the same finding.
    std::vector<std::string> ShrinkFor(const Subject &subject, const Finding &wanted, std::vector<std::string> steps) {
        const Clock::time_point begin = Clock::now();
        const auto isCaused = [&](const std::vector<std::string> &fewer) {
            const ChildRun run = RunLines(subject, std::string(kMonkeyScenario), fewer);
            const std::vector<Finding> all = FindingsOf(subject, run, kMonkeyScenario);
            return std::any_of(all.begin(), all.end(),
                               [&wanted](const Finding &finding) { return IsSame(finding, wanted); });
        };
        return Shrink(std::move(steps), isCaused, [begin] { return Since(begin) > kShrinkSeconds; });
    }

    // ---- Findings

    bool IsWanted(const Finding &finding) const {
        const auto has = [&finding](const std::vector<std::string> &rules) {
            return std::find(rules.begin(), rules.end(), finding.rule->id) != rules.end();
        };
        // A check that does not tell of a crash would be of no use.
        if (finding.rule == &Named(kRunRules, "run-crash") || finding.rule == &Named(kRunRules, "run-hang"))
            return true;
        return (mOptions.only.empty() || has(mOptions.only)) && !has(mOptions.except);
    }

    // Crashes differ in addresses.
    static bool IsSame(const Finding &a, const Finding &b) {
        return a.rule == b.rule && a.plugin == b.plugin && a.function == b.function && a.callback == b.callback &&
               WithoutAddresses(a.subject) == WithoutAddresses(b.subject);
    }

    static std::string WithoutAddresses(const std::string &text) {
        std::string plain;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text.compare(i, 2, "0x") == 0) {
                i = std::min(text.find_first_not_of("0123456789abcdef", i + 2), text.size());
                plain += "0x";
            }
            if (i < text.size())
                plain += text[i];
        }
        return plain;
    }

    Found *FindFound(Subject &subject, const Finding &finding) const {
        const auto same = std::find_if(subject.verdict.found.begin(), subject.verdict.found.end(),
                                       [&finding](const Found &known) { return IsSame(known.finding, finding); });
        return same == subject.verdict.found.end() ? nullptr : &*same;
    }

    Found *Keep(Subject &subject, const Finding &finding, std::string_view scenario) {
        if (!IsWanted(finding))
            return nullptr;
        Found *found = FindFound(subject, finding);
        if (!found) {
            subject.verdict.found.push_back({finding, {}, "", CommandFor(subject, scenario), {}});
            found = &subject.verdict.found.back();
        }
        if (std::find(found->scenarios.begin(), found->scenarios.end(), scenario) == found->scenarios.end())
            found->scenarios.emplace_back(scenario);
        return found;
    }

    // What a run shows, its end included.
    static std::vector<Finding> FindingsOf(const Subject &subject, const ChildRun &run, std::string_view scenario) {
        std::vector<Finding> all = run.record.findings;
        const bool refusesAgain =
            scenario == "enable" && subject.startsWell &&
            std::any_of(run.record.failures.begin(), run.record.failures.end(),
                        [](const Recorded::Pair &failure) { return failure.about.starts_with("enable "); });
        if (refusesAgain)
            all.push_back(
                MakeFinding(Named(kRunRules, "run-enable"), subject.name, {{"disabled", "the plugin was disabled"}}));
        const bool isSignatureTold = std::any_of(all.begin(), all.end(), [](const Finding &finding) {
            return std::string_view(finding.rule->id).starts_with("start-");
        });
        for (const Recorded::Pair &fault : run.record.faults) {
            const bool isTold = isSignatureTold && fault.text.find("signature") != std::string::npos;
            if (!refusesAgain && !isTold)
                all.push_back(MakeFinding(Named(kRunRules, "run-load"), NameOfFile(subject, fault.about),
                                          {{"fault", fault.text}}));
        }
        if (run.ending != Ending::Whole && run.record.faults.empty())
            all.push_back(
                MakeFinding(run.ending == Ending::Hang ? Named(kRunRules, "run-hang") : Named(kRunRules, "run-crash"),
                            subject.name, {{"cause", run.cause}}));
        return all;
    }

    static std::string NameOfFile(const Subject &subject, const std::string &path) {
        for (const Target &target : subject.targets) {
            if (target.file == path)
                return target.name;
        }
        return subject.name;
    }

    // A fault of loading that was found in the file already.
    static bool IsToldOfFile(const Subject &subject, const Finding &finding) {
        return finding.rule == &Named(kRunRules, "run-load") &&
               std::any_of(subject.verdict.found.begin(), subject.verdict.found.end(), [&finding](const Found &known) {
                   return known.scenarios.front() == kFileScenario && known.finding.subject == finding.subject;
               });
    }

    void Note(Subject &subject, std::string_view scenario, const ChildRun &run, bool isCounted = true) {
        for (const Finding &finding : FindingsOf(subject, run, scenario)) {
            if (IsToldOfFile(subject, finding))
                continue;
            Found *found = Keep(subject, finding, scenario);
            if (found && found->report.empty() && run.ending != Ending::Whole && finding.subject == run.cause)
                found->report = run.report;
        }
        subject.verdict.notes.insert(run.record.notes.begin(), run.record.notes.end());
        if (!isCounted)
            return;
        const bool isLoadFault = !run.record.faults.empty();
        subject.verdict.runs.push_back({std::string(scenario),
                                        run.ending == Ending::Whole || isLoadFault ? ScenarioRun::Result::Ran
                                        : run.ending == Ending::Hang               ? ScenarioRun::Result::Hung
                                                                                   : ScenarioRun::Result::Crashed,
                                        run.seconds});
        ShowProgress(subject, scenario);
    }

    // Findings of all plugins together belong to the plugins that they name.
    void Distribute(Subject &together) {
        std::vector<Found> others;
        for (Found &found : together.verdict.found) {
            Subject *owner = nullptr;
            for (std::size_t i = 0; i < mTargets.size(); ++i) {
                const Subject &subject = *mSubjects[i];
                const std::string quoted = "'" + NameInside(subject) + "'";
                const bool isNamed = found.finding.plugin == NameInside(subject) ||
                                     found.finding.plugin == subject.name ||
                                     (!found.report.empty() && found.finding.subject.find(quoted) != std::string::npos);
                if (isNamed && !owner)
                    owner = mSubjects[i].get();
            }
            Found *known = owner ? FindFound(*owner, found.finding) : nullptr;
            if (owner && IsToldOfFile(*owner, found.finding))
                continue;
            if (known)
                known->scenarios.emplace_back(kTogetherScenario);
            else
                (owner ? owner->verdict.found : others).push_back(std::move(found));
        }
        together.verdict.found = std::move(others);
        together.verdict.notes.clear(); // known from the runs of each plugin
    }

    // The name that the plugin gave itself.
    static std::string NameInside(const Subject &subject) {
        return subject.stage.made.plugins.empty() ? subject.name : subject.stage.made.plugins.front().name;
    }

    // The runs ended in any order.
    static void Arrange(PluginVerdict &verdict) {
        const auto place = [](const std::string &name) { return FindScenario(name) - Scenarios().data(); };
        std::sort(verdict.runs.begin(), verdict.runs.end(),
                  [&place](const ScenarioRun &a, const ScenarioRun &b) { return place(a.name) < place(b.name); });
        for (Found &found : verdict.found)
            std::sort(found.scenarios.begin(), found.scenarios.end(),
                      [&place](const std::string &a, const std::string &b) { return place(a) < place(b); });
        std::stable_sort(verdict.found.begin(), verdict.found.end(), [&place](const Found &a, const Found &b) {
            return std::pair(a.finding.rule->level, place(a.scenarios.front())) <
                   std::pair(b.finding.rule->level, place(b.scenarios.front()));
        });
    }

    // ---- Progress

    void ShowProgress(const Subject &subject, std::string_view scenario) {
        ++mDone;
        if (!mShowsProgress)
            return;
        std::fprintf(stderr, "\r\033[K%d runs; %s: %s", mDone, subject.name.c_str(), std::string(scenario).c_str());
        std::fflush(stderr);
    }

    void ClearProgress() const {
        if (mShowsProgress)
            std::fputs("\r\033[K", stderr);
    }

    const CheckOptions &mOptions;
    const WorkFolder mFolder;
    const std::vector<Target> mTargets;
    const unsigned mJobs;
    const bool mShowsProgress = HasColours(STDERR_FILENO);
    std::vector<std::unique_ptr<Subject>> mSubjects;
    Pool mPool;
    std::mutex mMutex; // guards the subjects
    int mDone = 0;
};

void CheckNames(const std::vector<std::string> &given, const std::vector<std::string> &names, const char *what,
                const char *advice) {
    for (const std::string &name : given) {
        if (std::find(names.begin(), names.end(), name) != names.end())
            continue;
        const std::string nearest = DidYouMean(name, names);
        throw UsageError(std::string("check: no ") + what + " '" + name + "'" +
                         (nearest.empty() ? std::string(advice) : nearest));
    }
}

void CheckNames(const CheckOptions &options) {
    CheckNames(options.only, RuleIds(), "rule", ": 'avsk explain' lists all rules");
    CheckNames(options.except, RuleIds(), "rule", ": 'avsk explain' lists all rules");
    CheckNames(options.scenarios, ScenarioNames(), "scenario", ": 'avsk check --help' lists the scenarios");
}

} // namespace

Verdict JudgePlugins(const CheckOptions &options) {
    CheckNames(options);
    return Checking(options).Run();
}

int CheckInProcess(const CheckOptions &options) {
    CheckNames(options);
    Checking checking(options);
    SessionOptions session;
    session.file = checking.WriteSession();
    session.simulator.quiet = true;
    session.observing.check = true;
    return RunSession(std::move(session));
}

} // namespace host
