// Executes the steps of a session; see Runner.h. Called by RunSession.cpp.
#include "Runner.h"

#include "Forms.h"

#include "Common/Terminal.h"
#include "Common/UsageError.h"
#include "Observing/Place.h"
#include "Services/Lifetime.h"

#include <cstdio>
#include <utility>
#include <variant>

#include <unistd.h>

namespace host {

SessionRunner::SessionRunner(SessionOptions options)
    : mName(options.file.empty() ? "input" : options.file), mSetUp(std::move(options)) {}

SessionRunner::~SessionRunner() = default;

void SessionRunner::Apply(const Step &step) {
    const std::string wrong = std::get<SetUpFunction *>(step.form->function)(mSetUp, step);
    if (!wrong.empty())
        throw UsageError(mName + ":" + std::to_string(step.line) + ":" + std::to_string(step.words[0].column) + ": " +
                         wrong);
}

void SessionRunner::Start() {
    if (mSimulator)
        return;
    try {
        mSetUp.Finish();
    } catch (const UsageError &error) {
        throw UsageError(mName + ": " + error.what());
    }
    mSetUp.options.simulator.frames = 0; // the steps say how many
    mSimulator = std::make_unique<Simulator>(mSetUp.options.simulator);
    mSimulator->console.Keep(mSetUp.options.simulator.root);
    mCalls = std::make_unique<CallLog>(*mSimulator);
    mObservers = std::make_unique<Observers>(*mSimulator, mSetUp.options.observing);
    for (const auto &[plugin, milliseconds] : mSetUp.budgets)
        mObservers->Times().SetBudget(plugin, milliseconds);
    Prepare(*mSimulator);
    SetPlace(mName + ": loading the plugins");
    StartPlugins(*mSimulator);
    mLoaded = true;
}

void SessionRunner::Do(const Step &step) {
    const std::string place = mName + ":" + std::to_string(step.line) + ": " + step.text;
    SetPlace(place);
    std::string wrong;
    if (const auto *look = std::get_if<ExpectFunction *>(&step.form->function)) {
        ++mExpectations;
        const Finding finding = (*look)(*this, step);
        const Finding::Answer wanted = step.negated ? Finding::Answer::No : Finding::Answer::Yes;
        if (finding.answer != wanted)
            wrong = "seen: " + finding.seen;
    } else {
        ++mSteps;
        wrong = std::get<StepFunction *>(step.form->function)(*this, step);
    }
    if (wrong.empty())
        return;
    ++mFailed;
    wrong = mSimulator->console.WithoutRoot(wrong);
    std::printf("%s\n", Emphasised(Emphasis::Failure, place + ": " + wrong, STDOUT_FILENO).c_str());
    std::fflush(stdout);
}

int SessionRunner::Finish() {
    SetPlace(mName + ": the end of the session");
    if (mLoaded)
        Unload();
    if (mObservers) {
        mObservers->ReportUnloaded();
        for (const std::string &failure : mObservers->Failures()) {
            ++mFailed;
            std::printf("%s\n", Emphasised(Emphasis::Failure, mName + ": " + failure, STDOUT_FILENO).c_str());
        }
    }
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
