// Executes the steps of a session; see Runner.h. Called by RunSession.cpp.
#include "Runner.h"

#include "Round.h"

#include "Common/Terminal.h"
#include "Common/UsageError.h"
#include "Observing/OpenGLUsage.h"
#include "Observing/Place.h"
#include "Observing/SimulatedHost.h"
#include "Rules/OpenGLChecks.h"
#include "Services/Lifetime.h"

#include <cstdio>
#include <utility>
#include <variant>

#include <unistd.h>

namespace host {

SessionRunner::SessionRunner(SessionOptions options) : mSetUp(std::move(options)), mName(mSetUp.name) {}

SessionRunner::~SessionRunner() = default;

void SessionRunner::Start() {
    if (mSimulator)
        return;
    mSetUp.Finish();
    mSetUp.options.simulator.frames = 0; // the steps say how many
    mSimulator = std::make_unique<Simulator>(mSetUp.options.simulator);
    mSimulator->console.Keep(mSetUp.options.simulator.root);
    mCalls = std::make_unique<CallLog>(*mSimulator);
    mObservers = std::make_unique<Observers>(std::make_unique<SimulatedHost>(*mSimulator), mSetUp.options.observing);
    if (mSetUp.options.observing.check) {
        mChecker = std::make_unique<Checker>(mSimulator->frame, mObservers->Owners(), mSetUp.options.observing.allowed);
        mChecker->AcceptLongSteps();
        mChecker->Add(std::make_unique<OpenGLChecks>(mChecker->Found()));
    }
    if (mSetUp.options.observing.openGL)
        mUsage = std::make_unique<OpenGLUsage>();
    StartRecord(mSetUp.options.observing.record);
    mDatarefs = std::make_unique<DatarefNames>();
    for (const auto &[plugin, milliseconds] : mSetUp.budgets)
        mObservers->Times().SetBudget(plugin, milliseconds);
    if (mSetUp.options.round)
        mSimulator->placePlugins = [this] { mSetUp.PlacePlugins(); };
    Prepare(*mSimulator);
    SetPlace(mName + ": loading the plugins");
    StartPlugins(*mSimulator);
    mLoaded = true;
}

void SessionRunner::StartRecord(const std::string &file) {
    if (file.empty())
        return;
    mRecord = std::make_unique<Record>(file);
    mObservers->Loaded().OnFault(
        [this](const std::string &path, const std::string &fault) { mRecord->AddFault(path, fault); });
    if (mChecker)
        mChecker->Found().OnNew([this](const Finding &finding) { mRecord->Add(finding); });
}

Failure SessionRunner::Try(const Step &step) {
    if (const auto *look = std::get_if<ExpectFunction *>(&step.form->function)) {
        ++mExpectations;
        const Outcome outcome = (*look)(*this, step);
        const Outcome::Answer wanted = step.negated ? Outcome::Answer::No : Outcome::Answer::Yes;
        return outcome.answer == wanted ? Failure() : Failure("seen: " + outcome.seen);
    }
    ++mSteps;
    try {
        return std::get<StepFunction *>(step.form->function)(*this, step);
    } catch (const UsageError &error) { // no name matches
        return error.what();
    }
}

bool SessionRunner::Do(const Step &step) {
    SetPlace(mName + ":" + std::to_string(step.line) + ": " + step.text);
    const Failure failure = Try(step);
    Round *const round = mSetUp.options.round;
    if (round)
        round->checks.push_back({step.text, ""});
    if (failure.why.empty())
        return true;
    ++mFailed;
    if (mRecord)
        mRecord->AddFailure(step.text, failure.why);
    const std::string column = failure.column > 0 ? ":" + std::to_string(failure.column) : "";
    const std::string line = mName + ":" + std::to_string(step.line) + column + ": frame " +
                             std::to_string(mSimulator->frame) + ": " + step.text + ": " +
                             mSimulator->console.WithoutRoot(failure.why);
    std::printf("%s\n", Emphasised(Emphasis::Failure, line, STDOUT_FILENO).c_str());
    std::fflush(stdout);
    if (round)
        round->checks.back().failure = line;
    return false;
}

int SessionRunner::Finish() {
    SetPlace(mName + ": the end of the session");
    if (mLoaded && mRecord)
        mRecord->Add(TakeInventory(*mSimulator, mObservers->Owners()));
    if (mLoaded)
        Unload();
    if (mObservers) {
        mObservers->ReportUnloaded();
        if (mUsage)
            mUsage->Print();
        for (const std::string &failure : mObservers->Failures()) {
            ++mFailed;
            std::printf("%s\n", Emphasised(Emphasis::Failure, mName + ": " + failure, STDOUT_FILENO).c_str());
        }
    }
    if (mChecker && mChecker->PrintReport() != 0)
        ++mFailed;
    if (mRecord && mChecker) {
        for (const std::string &note : mChecker->Notes())
            mRecord->AddNote(note);
    }
    if (mRecord)
        mRecord->End(mChecker ? mChecker->Found().All() : std::vector<Finding>());
    if (const std::string note = mSetUp.FilesNote(); !note.empty())
        std::printf("%s: %s\n", mName.c_str(), note.c_str());
    std::printf("%s: %d frames, %d steps, %d expectations, %d failed\n", mName.c_str(),
                mSimulator ? mSimulator->frame : 0, mSteps, mExpectations, mFailed);
    std::fflush(stdout);
    return mFailed == 0 ? 0 : 1;
}

void SessionRunner::RunFrames(int count) {
    for (int i = 0; i < count; ++i)
        mSimulator->RunFrame();
}

void SessionRunner::Unload() {
    mLoaded = false;
    mObservers->ReportLoaded();
    StopPlugins(*mSimulator);
}

} // namespace host
