// Commands: dispatch to handlers, and holding.
#include "World.h"

namespace {

const auto kPush = reinterpret_cast<AVSKCommandRef>(11);
const auto kPull = reinterpret_cast<AVSKCommandRef>(12);
const auto kTurn = reinterpret_cast<AVSKCommandRef>(13);

class Commands : public ThreePlugins {
  protected:
    // Registers a handler of this plugin for kPush that runs f; returns its refcon.
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
    static std::string Dispatch(int before) { return DOES(AVSKCommandHook(kPush, 1, 0, before)); }
    static void Begin(const Puppet &owner, std::initializer_list<AVSKCommandRef> commands) {
        owner.Run([&] { std::for_each(commands.begin(), commands.end(), AVSKCommandBegin); });
    }
    static std::string Repeat() { return DOES(AVSKEventHook(AVSKHostEventCommands, 0, 0, 0)); }
};

// ---- Handlers

TEST_F(Commands, AreHandledNewestFirstBeforeTheHostAndOldestFirstAfterIt) {
    for (const int before : {1, 0}) {
        for (const Puppet *owner : {&a, &b, &a})
            Handle(*owner, before, [](AVSKCommandRef command, int) {
                EXPECT_EQ(command, kPush);
                return Note(std::to_string(AVSKGetMyID())), -1; // any value but 0 continues the dispatch
            });
        Says(b, before, "last registered");
    }
    EXPECT_EQ(Dispatch(2), "1: last registered; 1; 2; 1");
    EXPECT_EQ(Dispatch(0), "1: 1; 2; 1; last registered");
    EXPECT_EQ(DOES(AVSKCommandHook(kPull, 1, 0, 1)), "1") << "nobody's";
}

TEST_F(Commands, HaveAPhaseInWhichTheEndWins) {
    Handle(a, 1, [](AVSKCommandRef, int phase) { return Note(std::to_string(phase)), 1; });
    a.Run([] { AVSKRegisterCommandHandler(kPush, nullptr, 1, nullptr); }); // is skipped
    for (const auto &[begin, end, phase] : Table<int, int, int>{{0, 0, 1}, {1, 0, 0}, {0, 256, 2}, {1, 1, 2}})
        EXPECT_EQ(DOES(AVSKCommandHook(kPush, begin, end, 1)), Line("1: ", phase));
}

TEST_F(Commands, StopAtTheFirstHandlerThatAnswers0UnlessItsPluginIsDisabled) {
    for (const int before : {0, 1}) {
        Says(a, before, "A");
        Says(b, before, "B stops", 0);
        Says(a, before, "A");
        EXPECT_EQ(Dispatch(before), "0: A; B stops");
        AVSKDisablePlugin(2);
        EXPECT_EQ(Dispatch(before), "1: A; A");
        AVSKEnablePlugin(2);
    }
}

TEST_F(Commands, AHandlerGoesByItsOwnersValuesAndOneAtATime) {
    void *const first = Says(a, 1, "first");
    void *const second = Says(a, 1, "second");
    a.Run([&] { AVSKRegisterCommandHandler(kPush, a.code.command, 1, first); });
    b.Run([&] { AVSKUnregisterCommandHandler(kPush, a.code.command, 1, first); });
    a.Run([&] { AVSKUnregisterCommandHandler(kPush, b.code.command, 1, first); });
    Unregister(a, 0, first);
    EXPECT_EQ(Dispatch(1), "1: first; second; first");
    Unregister(a, 1, first);
    EXPECT_EQ(Dispatch(1), "1: second; first") << "the one called first went";
    Unregister(a, 1, first);
    Unregister(a, 1, first);
    EXPECT_EQ(Dispatch(1), "1: second");
    Unregister(a, 1, second);
    EXPECT_EQ(Dispatch(1), "1");
}

// ---- Finding and creating

TEST_F(Commands, ThePrefixOfTheSimulatorsIsComplainedAboutAndUsedAllTheSame) {
    host.on.findCommand = [](const char *, const char *, int) { return kPull; };
    a.Run(JournalErrors);
    for (const auto &[name, complaint] : Table<const char *, std::string>{
             {"sim/x", "error: Plugin is illegally registering a command with the prefix sim/; "},
             {"sim", ""},
             {"my/sim/x", ""}})
        EXPECT_EQ(DOES_AS(a, AVSKCreateCommand(name, "text")),
                  Line(kPull, ": ", complaint, "findCommand(\"", name, "\", \"text\", 1)"));
    EXPECT_EQ(DOES_AS(a, AVSKFindCommand("sim/x")), Line(kPull, ": findCommand(\"sim/x\", null, 0)"));
    EXPECT_EQ(DOES_AS(a, AVSKCreateCommand(nullptr, "text")), Line(kPull, ": findCommand(null, \"text\", 1)"));
    EXPECT_EQ(host.logPieces,
              (Lines{"[", "Name of A", "]: ", "It is illegal to register a command starting with sim/", "\n"}));
}

// ---- Holding

TEST_F(Commands, HeldOnesAreContinuedByPluginAndRefWhileItIsEnabled) {
    EXPECT_EQ(DOES(Begin(b, {kTurn, kPush, kPush})), "beginCommand(13); beginCommand(11); beginCommand(11)");
    EXPECT_EQ(DOES_AS(a, AVSKCommandBegin(kPull), AVSKCommandOnce(kTurn)),
              "beginCommand(12); beginCommand(13); endCommand(13)");
    EXPECT_EQ(Repeat(), "1: continueCommand(12); continueCommand(11); continueCommand(13)");
    EXPECT_EQ(DOES_AS(a, AVSKCommandEnd(kPush)), "endCommand(11)") << "the end of another's reaches the host";
    EXPECT_EQ(DOES_AS(b, AVSKCommandEnd(kTurn)), "endCommand(13)");
    EXPECT_EQ(Repeat(), "1: continueCommand(12); continueCommand(11)");
    AVSKDisablePlugin(2);
    EXPECT_EQ(Repeat(), "1: continueCommand(12)");
}

TEST_F(Commands, TheHoldsAndHandlersOfAnUnloadedPluginEnd) {
    Says(air, 1, "air's");
    Says(a, 1, "A's");
    Begin(air, {kTurn, kPull});
    Begin(a, {kTurn});
    air.stop = [] { AVSKCommandBegin(kPush); };
    EXPECT_EQ(DOES(World::UnloadAircraft()),
              "disable air; stop air; beginCommand(11); endCommand(11); endCommand(12); endCommand(13)");
    EXPECT_EQ(Repeat(), "1: continueCommand(13)") << "A's";
    EXPECT_EQ(Dispatch(1), "1: A's");

    // A host that begins a command inside a rejected duplicate's last calls begins it as that plugin.
    air.signature = "test.A";
    air.start = [] { return AVSKCommandBegin(kPush), 1; };
    host.on.endCommand = [](void *) { AVSKCommandBegin(kPull); };
    World::LoadAircraft();
    host.on.endCommand = nullptr;
    air.signature = "test.air", air.start = nullptr;
    World::LoadAircraft();
    EXPECT_EQ(Repeat(), "1: continueCommand(13)") << "the next plugin with its ID does not hold that command";
}

TEST_F(Commands, HoldsMayChangeWhileTheyAreContinued) {
    Begin(air, {kPush, kPull, kTurn});
    std::function<void()> act = [&] { air.Run([] { AVSKCommandEnd(kPush), AVSKCommandBegin(kPull); }); };
    host.on.continueCommand = [&](void *) { act ? std::exchange(act, nullptr)() : void(); };
    EXPECT_EQ(Repeat(),
              "1: continueCommand(11); endCommand(11); beginCommand(12); continueCommand(12); continueCommand(13)");
    Begin(air, {kPush});
    act = [&] { air.Run([] { AVSKCommandEnd(kPush), AVSKCommandEnd(kPull); }); };
    EXPECT_EQ(Repeat(), "1: continueCommand(11); endCommand(11); endCommand(12); continueCommand(13)");
    Begin(air, {kPush});
    act = World::UnloadAircraft;
    EXPECT_EQ(Repeat(), "1: continueCommand(11); disable air; stop air; endCommand(11); endCommand(13)");
    EXPECT_EQ(Repeat(), "1");
}

} // namespace
