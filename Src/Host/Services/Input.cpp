// The services for keys and buttons, and the commands bound to them.
//
// Keys. Slot 21 presses a key for two frames: type 1 gives its virtual key code,
// any other type its character, whose virtual key is that of the capital letter.
// Plugins see the key before its command runs. Slot 23 runs the command of a
// virtual key code without a key event. Bound keys: F4 next view, F5 climb, F6 descend, F7 level.
//
// Buttons. 1 climb, 2 descend, 3 next view; other buttons do nothing. Pass 0
// reports changes: the first press of a button begins its command, the last
// release ends it. Pass 1 reports which buttons are down and continues their
// commands, except in the frame in which they began.
#include "Input.h"

#include "Common/Text.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include "AVSK/AVSKUtilities.h"

#include <algorithm>
#include <cctype>
#include <span>

namespace host {
namespace {

struct Binding {
    int number; // of a virtual key or a button
    const char *command;
};

constexpr Binding kKeyBindings[] = {
    {115, "sim/view/next"}, {116, "sim/flight/climb"}, {117, "sim/flight/descend"}, {118, "sim/flight/level"}};
constexpr Binding kButtonBindings[] = {{1, "sim/flight/climb"}, {2, "sim/flight/descend"}, {3, "sim/view/next"}};

const char *NameBound(std::span<const Binding> bindings, int number) {
    for (const Binding &binding : bindings) {
        if (binding.number == number)
            return binding.command;
    }
    return nullptr;
}

Command *FindBound(const CommandTable &commands, std::span<const Binding> bindings, int number) {
    const char *name = NameBound(bindings, number);
    return name ? commands.Find(name) : nullptr;
}

void SimulateKeyPress(int keyType, int key) {
    constexpr int kByVirtualKey = 1;
    constexpr int kFrames = 2;
    Input &input = Enter().input;
    if (keyType == kByVirtualKey)
        input.PressKey('\0', static_cast<char>(key), kFrames);
    else
        input.PressKey(static_cast<char>(key), static_cast<char>(std::toupper(static_cast<unsigned char>(key))),
                       kFrames);
}

void CommandKeyStroke(int key) {
    Simulator &simulator = Enter();
    if (Command *command = simulator.input.Bound(static_cast<char>(key))) {
        simulator.commands.Run(command, CommandPhase::Begin);
        simulator.commands.Run(command, CommandPhase::End);
    }
}

void CommandButton(const int *buttons, int release, int pass) {
    Input &input = Enter().input;
    for (; buttons && *buttons != 0; ++buttons)
        input.ChangeButton(*buttons, release != 0, pass);
}

} // namespace

void Input::PressKey(char character, char virtualKey, int frames, int modifiers) {
    const auto same = [virtualKey](const Key &key) { return key.virtualKey == virtualKey; };
    if (const auto down = std::find_if(mKeys.begin(), mKeys.end(), same); down != mKeys.end())
        LetGo(down->press);
    const bool taken = AVSKKeyPressHook(character, kKeyDown | modifiers, virtualKey) == 0;
    Command *command = taken ? nullptr : Bound(virtualKey);
    mKeys.push_back(
        {++mLastPress, character, virtualKey, modifiers, command, mSimulator.frame, mSimulator.frame + frames});
    if (command)
        mSimulator.commands.Run(command, CommandPhase::Begin);
}

void Input::LetGo(int press) {
    const auto found = std::find_if(mKeys.begin(), mKeys.end(), [press](const Key &key) { return key.press == press; });
    if (found == mKeys.end())
        return;
    const Key key = *found;
    mKeys.erase(found);
    AVSKKeyPressHook(key.character, kKeyUp | key.modifiers, key.virtualKey);
    if (key.command) // it began, so it ends even if a plugin consumes the release
        mSimulator.commands.Run(key.command, CommandPhase::End);
}

void Input::StepKeys() {
    // Handlers may press keys here, so iterate over a copy of the presses of this moment.
    const std::vector<Key> keys = mKeys;
    for (const Key &key : keys) {
        const bool down =
            std::any_of(mKeys.begin(), mKeys.end(), [&key](const Key &held) { return held.press == key.press; });
        if (!down)
            continue;
        if (mSimulator.frame >= key.until)
            LetGo(key.press);
        else if (key.command && mSimulator.frame > key.since)
            mSimulator.commands.Run(key.command, CommandPhase::Continue);
    }
    for (Command *command : std::vector<Command *>(mHeldCommands))
        mSimulator.commands.Run(command, CommandPhase::Continue);
    constexpr int kDownPass = 1;
    for (const int button : std::vector<int>(mHeldButtons))
        ChangeButton(button, /*release=*/false, kDownPass);
}

bool Input::ReleaseKey(char virtualKey) {
    const auto down =
        std::find_if(mKeys.begin(), mKeys.end(), [virtualKey](const Key &key) { return key.virtualKey == virtualKey; });
    if (down == mKeys.end())
        return false;
    LetGo(down->press);
    return true;
}

bool Input::Holds(const Command *command) const {
    return std::find(mHeldCommands.begin(), mHeldCommands.end(), command) != mHeldCommands.end();
}

bool Input::HoldCommand(Command *command) {
    if (Holds(command))
        return false;
    mHeldCommands.push_back(command);
    mSimulator.commands.Run(command, CommandPhase::Begin);
    return true;
}

bool Input::EndCommand(Command *command) {
    if (std::erase(mHeldCommands, command) == 0)
        return false;
    mSimulator.commands.Run(command, CommandPhase::End);
    return true;
}

bool Input::HoldButton(int button) {
    if (std::find(mHeldButtons.begin(), mHeldButtons.end(), button) != mHeldButtons.end())
        return false;
    mHeldButtons.push_back(button);
    ChangeButton(button, /*release=*/false, /*pass=*/0);
    return true;
}

bool Input::ReleaseButton(int button) {
    if (std::erase(mHeldButtons, button) == 0)
        return false;
    ChangeButton(button, /*release=*/true, /*pass=*/0);
    return true;
}

std::vector<int> Input::ButtonsDown() const {
    std::vector<int> down;
    for (const auto &[button, state] : mButtons) {
        const auto own = std::count(mHeldButtons.begin(), mHeldButtons.end(), button);
        if (state.presses > own)
            down.push_back(button);
    }
    return down;
}

Command *Input::Bound(char virtualKey) const {
    return FindBound(mSimulator.commands, kKeyBindings, static_cast<unsigned char>(virtualKey));
}

const char *Input::BoundName(int virtualKey) { return NameBound(kKeyBindings, virtualKey); }

std::string Input::BindingsOf(std::string_view command) {
    std::vector<std::string> names;
    for (const Binding &binding : kKeyBindings) {
        if (binding.command == command)
            names.emplace_back(AVSKGetVirtualKeyDescription(static_cast<char>(binding.number)));
    }
    for (const Binding &binding : kButtonBindings) {
        if (binding.command == command)
            names.push_back("button " + std::to_string(binding.number));
    }
    return Join(names);
}

void Input::ChangeButton(int button, bool release, int pass) {
    constexpr int kEdge = 0;
    Button &state = mButtons[button]; // stays valid even if handlers press other buttons
    Command *command = FindBound(mSimulator.commands, kButtonBindings, button);
    const auto run = [&](CommandPhase phase) {
        state.lastFrame = mSimulator.frame;
        if (command)
            mSimulator.commands.Run(command, phase);
    };
    if (pass != kEdge) {
        if (!release && state.presses > 0 && state.lastFrame != mSimulator.frame)
            run(CommandPhase::Continue);
    } else if (!release) {
        if (++state.presses == 1)
            run(CommandPhase::Begin);
    } else if (state.presses > 0 && --state.presses == 0) {
        run(CommandPhase::End);
    }
}

void FillInputSlots(AVSKHostCallbacks &table) {
    table.simulateKeyPress = SimulateKeyPress;
    table.commandKeyStroke = CommandKeyStroke;
    table.commandButton = CommandButton;
}

} // namespace host
