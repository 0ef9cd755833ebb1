// Commands: who hears of them, who holds them, and what a dispatch survives.
#include "World.h"

namespace {

const auto kPush = reinterpret_cast<AVSKCommandRef>(11);
const auto kPull = reinterpret_cast<AVSKCommandRef>(12);
const auto kTurn = reinterpret_cast<AVSKCommandRef>(13);

class Commands : public ThreePlugins {
  protected:
    // A handler of a plugin's for kPush that runs f, and its refcon.
    void *Handle(const Puppet &owner, int before, CommandPlayer f) {
        void *const refcon = Keep(std::move(f));
        owner.Run([&] { AVSKRegisterCommandHandler(kPush, owner.code.command, before, refcon); });
        return refcon;
    }
    void *Says(const Puppet &owner, int before, const std::string &line, int answer = 1) {
        return Handle(owner, before, [=](AVSKCommandRef, int) { return Note(line), answer; });
    }
    static void Unregister(const Puppet &owner, int before, void *refcon) {
        owner.Run([&] { AVSKUnregisterCommandHandler(kPush, owner.code.command, before, refcon); });
    }
    static std::string Dispatch(int before, int answer = 1) {
        EXPECT_EQ(AVSKCommandHook(kPush, 1, 0, before), answer);
        return TakeCalls();
    }
    static std::string Repeat() {
        EXPECT_EQ(AVSKEventHook(AVSKHostEventCommands, 0, 0, 0), 1);
        return TakeCalls();
    }
};

// ---- Handlers

TEST_F(Commands, AreHandledNewestFirstBeforeTheHostAndOldestFirstAfterIt) {
    for (const int before : {1, 0}) {
        for (const Puppet *owner : {&a, &b, &a})
            Handle(*owner, before, [=, this](AVSKCommandRef command, int) {
                EXPECT_EQ(command, kPush);
                Note(std::to_string(AVSKGetMyID()));
                return -1; // anything but 0 goes on
            });
        Says(b, before, "last registered");
    }
    EXPECT_EQ(Dispatch(2), "last registered; 1; 2; 1");
    EXPECT_EQ(Dispatch(0), "1; 2; 1; last registered");
    EXPECT_EQ(AVSKCommandHook(kPull, 1, 0, 1), 1) << "nobody's";
    EXPECT_EQ(TakeCalls(), "");
}

TEST_F(Commands, HaveAPhaseInWhichTheEndWins) {
    Handle(a, 1, [](AVSKCommandRef, int phase) { return Note(std::to_string(phase)), 1; });
    a.Run([] { AVSKRegisterCommandHandler(kPush, nullptr, 1, nullptr); }); // is passed over
    for (const auto &[begin, end] : {std::pair(0, 0), {1, 0}, {0, 256}, {1, 1}})
        EXPECT_EQ(AVSKCommandHook(kPush, begin, end, 1), 1);
    EXPECT_EQ(TakeCalls(), "1; 0; 2; 2");
}

TEST_F(Commands, StopAtTheFirstHandlerThatAnswers0UnlessItsPluginIsDisabled) {
    Says(a, 0, "A");
    Says(b, 0, "B stops", 0);
    Says(a, 0, "A");
    EXPECT_EQ(Dispatch(0, 0), "A; B stops");
    AVSKDisablePlugin(2);
    TakeCalls();
    EXPECT_EQ(Dispatch(0), "A; A");
}

TEST_F(Commands, AHandlerGoesByItsOwnersValuesAndOneAtATime) {
    void *const first = Says(a, 1, "first");
    Says(a, 1, "second");
    a.Run([&] { AVSKRegisterCommandHandler(kPush, a.code.command, 1, first); });
    Unregister(b, 1, first);
    Unregister(a, 0, first);
    EXPECT_EQ(Dispatch(1), "first; second; first");
    Unregister(a, 1, first);
    EXPECT_EQ(Dispatch(1), "second; first") << "the one called first went";
}

// The second of three handlers, in the order of the calls, does something.
TEST_F(Commands, HandlersMayComeAndGoWhileTheyAreCalled) {
    struct Case {
        const char *what;
        std::function<void(int before, void *const refcons[3])> act;
        std::string after, afterNext;   // this dispatch and the one behind it
        std::string before, beforeNext; // the same before the host
    };
    using Refcons = void *const *;
    const auto add = [this](int before) { Says(b, before, "new"); };
    const auto drop = [this](int before, void *refcon) { Unregister(a, before, refcon); };
    const auto dropAll = [=](int before, Refcons r) { drop(before, r[0]), drop(before, r[1]), drop(before, r[2]); };
    const auto nest = [](int before) { AVSKCommandHook(kPush, 1, 0, before); };
    const Case cases[] = {
        {"itself", [&](int k, Refcons r) { drop(k, r[1]); }, "1; 2; 3", "1; 3", "1; 2; 3", "1; 3"},
        {"next", [&](int k, Refcons r) { drop(k, r[2]); }, "1; 2", "1; 2", "1; 2", "1; 2"},
        {"previous", [&](int k, Refcons r) { drop(k, r[0]); }, "1; 2; 3", "2; 3", "1; 2; 3", "2; 3"},
        {"all", dropAll, "1; 2", "", "1; 2", ""},
        {"new", [&](int k, Refcons) { add(k); }, "1; 2; 3; new", "1; 2; 3; new", "1; 2; 3", "new; 1; 2; 3"},
        {"nested", [&](int k, Refcons) { nest(k); }, "1; 2; 1; 2; 3; 3", "1; 2; 3", "1; 2; 1; 2; 3; 3", "1; 2; 3"},
        {"all, nested", [&](int k, Refcons r) { dropAll(k, r), nest(k), add(k); }, "1; 2; new", "new", "1; 2", "new"},
    };
    for (const Case &each : cases)
        for (const int before : {0, 1}) {
            SCOPED_TRACE(each.what + std::string(before ? " before" : " after"));
            void *refcons[3] = {};
            bool acted = false;
            const auto handle = [&](int i) {
                refcons[i] = Handle(a, before, [&, i](AVSKCommandRef, int) {
                    Note(std::to_string(i + 1));
                    if (i == 1 && !std::exchange(acted, true))
                        each.act(before, refcons);
                    return 1;
                });
            };
            for (const int i : {0, 1, 2})
                handle(before ? 2 - i : i);
            EXPECT_EQ(Dispatch(before), before ? each.before : each.after);
            EXPECT_EQ(Dispatch(before), before ? each.beforeNext : each.afterNext);
            Restart();
        }
}

TEST_F(Commands, AHandlerMayHaveItsOwnPluginUnloaded) {
    Handle(air, 0, [&](AVSKCommandRef, int) {
        World::UnloadAircraft();
        EXPECT_TRUE(air.IsMapped()) << "its code must be there to return to";
        return 1;
    });
    Says(air, 0, "air's next");
    Says(b, 0, "B");
    EXPECT_EQ(Dispatch(0), "disable air; stop air; B");
    EXPECT_FALSE(air.IsMapped());
    EXPECT_EQ(Dispatch(0), "B");
}

// ---- Finding and creating

TEST_F(Commands, ThePrefixOfTheSimulatorsIsComplainedAboutAndUsedAllTheSame) {
    host.on.findCommand = [](const char *, const char *, int) { return kPull; };
    a.Run(JournalErrors);
    a.Run([] {
        for (const char *name : {"sim/x", "sim", "my/sim/x"})
            EXPECT_EQ(AVSKCreateCommand(name, "text"), kPull);
        EXPECT_EQ(AVSKFindCommand("sim/x"), kPull);
        EXPECT_EQ(AVSKCreateCommand(nullptr, "text"), kPull);
    });
    EXPECT_EQ(TakeCalls(), "error: Plugin is illegally registering a command with the prefix sim/; "
                           "findCommand(\"sim/x\", \"text\", 1); findCommand(\"sim\", \"text\", 1); "
                           "findCommand(\"my/sim/x\", \"text\", 1); findCommand(\"sim/x\", null, 0); "
                           "findCommand(null, \"text\", 1)");
    EXPECT_EQ(host.logPieces,
              (Lines{"[", "Name of A", "]: ", "It is illegal to register a command starting with sim/", "\n"}));
}

// ---- Holding

TEST_F(Commands, HeldOnesAreContinuedByPluginAndRefWhileItIsEnabled) {
    b.Run([] {
        for (const AVSKCommandRef command : {kTurn, kPush, kPush})
            AVSKCommandBegin(command);
    });
    a.Run([] { AVSKCommandBegin(kPull), AVSKCommandOnce(kTurn); });
    EXPECT_EQ(TakeCalls(), "beginCommand(13); beginCommand(11); beginCommand(11); beginCommand(12); beginCommand(13); "
                           "endCommand(13)");
    EXPECT_EQ(Repeat(), "continueCommand(12); continueCommand(11); continueCommand(13)");
    a.Run([] { AVSKCommandEnd(kPush); });
    b.Run([] { AVSKCommandEnd(kTurn); });
    EXPECT_EQ(TakeCalls(), "endCommand(11); endCommand(13)") << "the end of another's reaches the host";
    EXPECT_EQ(Repeat(), "continueCommand(12); continueCommand(11)");
    AVSKDisablePlugin(2);
    TakeCalls();
    EXPECT_EQ(Repeat(), "continueCommand(12)");
}

TEST_F(Commands, TheHoldsAndHandlersOfAnUnloadedPluginEnd) {
    Says(air, 1, "air's");
    Says(a, 1, "A's");
    air.Run([] {
        for (const AVSKCommandRef command : {kTurn, kPull})
            AVSKCommandBegin(command);
    });
    a.Run([] { AVSKCommandBegin(kTurn); });
    air.stop = [] { AVSKCommandBegin(kPush); };
    TakeCalls();
    World::UnloadAircraft();
    EXPECT_EQ(TakeCalls(), "disable air; stop air; beginCommand(11); endCommand(11); endCommand(12); endCommand(13)");
    EXPECT_EQ(Repeat(), "continueCommand(13)") << "A's";
    EXPECT_EQ(Dispatch(1), "A's");
}

TEST_F(Commands, HoldsMayChangeWhileTheyAreContinued) {
    air.Run([] {
        for (const AVSKCommandRef command : {kPush, kPull, kTurn})
            AVSKCommandBegin(command);
    });
    TakeCalls();
    std::function<void()> act = [&] { air.Run([] { AVSKCommandEnd(kPush), AVSKCommandEnd(kPull); }); };
    host.on.continueCommand = [&](void *) {
        if (act)
            std::exchange(act, nullptr)();
    };
    EXPECT_EQ(Repeat(), "continueCommand(11); endCommand(11); endCommand(12); continueCommand(13)");
    air.Run([] { AVSKCommandBegin(kPush); });
    TakeCalls();
    act = World::UnloadAircraft;
    EXPECT_EQ(Repeat(), "continueCommand(11); disable air; stop air; endCommand(11); endCommand(13)");
    EXPECT_EQ(Repeat(), "");
}

} // namespace
