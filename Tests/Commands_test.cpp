// Commands: who hears of them, who holds them, and what a dispatch survives.
#include "ThreePlugins.h"

#include "AVSK/AVSKHost.h"

#include <stdexcept>

namespace {

const auto kPush = reinterpret_cast<AVSKCommandRef>(11);
const auto kPull = reinterpret_cast<AVSKCommandRef>(12);
const auto kTurn = reinterpret_cast<AVSKCommandRef>(13);

class Commands : public ThreePlugins<CommandPlayer> {
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
    int heard = -1;
    Handle(a, 1, [&](AVSKCommandRef, int phase) { return heard = phase, 1; });
    const struct {
        int begin;
        int end;
        int phase;
    } cases[] = {{0, 0, 1}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 2}, {0, 256, 2}, {1, 1, 2}};
    for (const auto &each : cases) {
        EXPECT_EQ(AVSKCommandHook(kPush, each.begin, each.end, 1), 1);
        EXPECT_EQ(heard, each.phase) << each.begin << each.end;
    }
}

TEST_F(Commands, StopAtTheFirstHandlerThatAnswers0UnlessItsPluginIsDisabled) {
    for (const int before : {0, 1}) {
        Says(a, before, "A");
        Says(b, before, "B stops", 0);
        Says(a, before, "A");
        EXPECT_EQ(Dispatch(before, 0), "A; B stops");
        AVSKDisablePlugin(2);
        TakeCalls();
        EXPECT_EQ(Dispatch(before), "A; A");
        AVSKEnablePlugin(2);
        TakeCalls();
    }
}

TEST_F(Commands, AHandlerGoesByItsOwnersValuesAndOneAtATime) {
    for (const int before : {0, 1}) {
        void *const first = Says(a, before, "first");
        Says(a, before, "second");
        a.Run([&] { AVSKRegisterCommandHandler(kPush, a.code.command, before, first); });
        const std::string all = "first; second; first";
        Unregister(b, before, first);
        Unregister(a, !before, first);
        Unregister(a, before, nullptr);
        a.Run([&] {
            AVSKUnregisterCommandHandler(kPush, b.code.command, before, first);
            AVSKUnregisterCommandHandler(kPull, a.code.command, before, first);
        });
        EXPECT_EQ(Dispatch(before), all);
        Unregister(a, before, first);
        EXPECT_EQ(Dispatch(before), "second; first") << "the one called first went";
        Unregister(a, before, first);
        Unregister(a, before, first);
        EXPECT_EQ(Dispatch(before), "second");
    }
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
    const auto grow = [this](int before, Refcons r) {
        for (std::uintptr_t i = 1000; i < 2000; ++i)
            AVSKRegisterCommandHandler(reinterpret_cast<AVSKCommandRef>(i), a.code.command, before, r[0]);
    };
    const Case cases[] = {
        {"itself", [&](int k, Refcons r) { drop(k, r[1]); }, "1; 2; 3", "1; 3", "1; 2; 3", "1; 3"},
        {"next", [&](int k, Refcons r) { drop(k, r[2]); }, "1; 2", "1; 2", "1; 2", "1; 2"},
        {"previous", [&](int k, Refcons r) { drop(k, r[0]); }, "1; 2; 3", "2; 3", "1; 2; 3", "2; 3"},
        {"all", dropAll, "1; 2", "", "1; 2", ""},
        {"new", [&](int k, Refcons) { add(k); }, "1; 2; 3; new", "1; 2; 3; new", "1; 2; 3", "new; 1; 2; 3"},
        {"new for next", [&](int k, Refcons r) { drop(k, r[2]), add(k); }, "1; 2; new", "1; 2; new", "1; 2",
         "new; 1; 2"},
        {"nested", [&](int k, Refcons) { nest(k); }, "1; 2; 1; 2; 3; 3", "1; 2; 3", "1; 2; 1; 2; 3; 3", "1; 2; 3"},
        {"all, nested", [&](int k, Refcons r) { dropAll(k, r), nest(k), add(k); }, "1; 2; new", "new", "1; 2", "new"},
        {"of 1000 more commands", grow, "1; 2; 3", "1; 2; 3", "1; 2; 3", "1; 2; 3"},
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
    Says(a, 0, "A");
    Handle(air, 0, [&](AVSKCommandRef, int) {
        World::UnloadAircraft();
        EXPECT_TRUE(air.IsMapped()) << "its code must be there to return to";
        air.returned = 0;
        return 1;
    });
    Says(air, 0, "air's next");
    Says(b, 0, "B");
    EXPECT_EQ(Dispatch(0), "A; disable air; stop air; B");
    EXPECT_EQ(air.returned, 1);
    EXPECT_FALSE(air.IsMapped());
    EXPECT_EQ(Dispatch(0), "A; B");
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Commands, AnExceptionOfAHandlerLeavesEverythingInOrder) {
    void *refcon = nullptr;
    refcon = Handle(a, 1, [&](AVSKCommandRef, int) -> int {
        Unregister(a, 1, refcon);
        throw std::runtime_error("handler");
    });
    Says(b, 1, "newer");
    EXPECT_THROW(AVSKCommandHook(kPush, 1, 0, 1), std::runtime_error);
    EXPECT_EQ(AVSKGetMyID(), 0);
    TakeCalls();
    EXPECT_EQ(Dispatch(1), "newer");
}

TEST_F(Commands, ANullHandlerIsNeverCalled) {
    a.Run([] { AVSKRegisterCommandHandler(kPush, nullptr, 1, nullptr); });
    EXPECT_EQ(Dispatch(1), "");
}

// ---- Finding and creating

TEST_F(Commands, ThePrefixOfTheSimulatorsIsComplainedAboutAndUsedAllTheSame) {
    host.on.findCommand = [](const char *, const char *, int) { return kPull; };
    const struct {
        const char *name;
        bool complains;
    } cases[] = {{"sim/x", true}, {"sim/", true}, {"Sim/x", false}, {"sim", false}, {"", false}, {"my/sim/x", false}};
    a.Run(JournalErrors);
    for (const auto &each : cases) {
        a.Run([&] { EXPECT_EQ(AVSKCreateCommand(each.name, "text"), kPull); });
        const std::string error = "error: Plugin is illegally registering a command with the prefix sim/; ";
        EXPECT_EQ(TakeCalls(), (each.complains ? error : "") + "findCommand(\"" + each.name + "\", \"text\", 1)");
        EXPECT_EQ(host.TakeLog(),
                  each.complains ? "[Name of A]: It is illegal to register a command starting with sim/\n" : "");
    }
    EXPECT_EQ(AVSKFindCommand("sim/x"), kPull);
    EXPECT_EQ(TakeCalls(), "findCommand(\"sim/x\", null, 0)");
    host.on.findCommand = nullptr;
    EXPECT_EQ(AVSKFindCommand("x"), nullptr);
}

// ---- Holding

TEST_F(Commands, HeldOnesAreContinuedByPluginAndRefWhileItIsEnabled) {
    b.Run([] {
        for (const AVSKCommandRef command : {kTurn, kPush, kPush})
            AVSKCommandBegin(command);
    });
    a.Run([] {
        AVSKCommandBegin(kPull);
        AVSKCommandOnce(kTurn);
    });
    EXPECT_EQ(
        TakeCalls(),
        "beginCommand(13); beginCommand(11); beginCommand(11); beginCommand(12); beginCommand(13); endCommand(13)");
    EXPECT_EQ(Repeat(), "continueCommand(12); continueCommand(11); continueCommand(13)");
    AVSKDisablePlugin(2);
    TakeCalls();
    EXPECT_EQ(Repeat(), "continueCommand(12)");
    AVSKEnablePlugin(2);
    a.Run([] { AVSKCommandEnd(kPush); });
    EXPECT_EQ(TakeCalls(), "enable B; endCommand(11)") << "the end of another's reaches the host";
    b.Run([] { AVSKCommandEnd(kTurn); });
    TakeCalls();
    EXPECT_EQ(Repeat(), "continueCommand(12); continueCommand(11)");
}

TEST_F(Commands, AreHeldWhileTheHostBeginsAndEndsThem) {
    host.on.beginCommand = host.on.endCommand = [](void *) { AVSKEventHook(AVSKHostEventCommands, 0, 0, 0); };
    a.Run([] {
        AVSKCommandBegin(kPush);
        AVSKCommandEnd(kPush);
    });
    EXPECT_EQ(TakeCalls(), "beginCommand(11); continueCommand(11); endCommand(11); continueCommand(11)");
    EXPECT_EQ(Repeat(), "");
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
    const struct {
        const char *what;
        std::function<void()> act; // when the first, kPush, is continued
        std::string journal, next;
    } cases[] = {
        {"ends itself", [&] { air.Run([] { AVSKCommandEnd(kPush); }); },
         "continueCommand(11); endCommand(11); continueCommand(12); continueCommand(13)",
         "continueCommand(12); continueCommand(13)"},
        {"ends next", [&] { air.Run([] { AVSKCommandEnd(kPull); }); },
         "continueCommand(11); endCommand(12); continueCommand(13)", "continueCommand(11); continueCommand(13)"},
        {"is unloaded", [] { World::UnloadAircraft(); },
         "continueCommand(11); disable air; stop air; endCommand(11); endCommand(12); endCommand(13)", ""},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        air.Run([] {
            for (const AVSKCommandRef command : {kPush, kPull, kTurn})
                AVSKCommandBegin(command);
        });
        TakeCalls();
        host.on.continueCommand = [&](void *command) {
            if (command == kPush)
                each.act();
        };
        EXPECT_EQ(Repeat(), each.journal);
        host.on.continueCommand = nullptr;
        EXPECT_EQ(Repeat(), each.next);
    }
}

} // namespace
