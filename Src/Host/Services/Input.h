// The keyboard and the joystick: what is down, and the commands bound to it.
#ifndef AVSK_HOST_SERVICES_INPUT_H
#define AVSK_HOST_SERVICES_INPUT_H

#include <map>
#include <vector>

namespace host {

struct Command;
struct Simulator;

class Input {
  public:
    // The simulator must stay where it is.
    explicit Input(Simulator &simulator) : mSimulator(simulator) {}

    // Presses a key and lets it go some frames later. A key that is still down
    // goes up first. If no plugin takes the press its command begins. The
    // modifiers are the flags of shift and control.
    void PressKey(char character, char virtualKey, int frames, int modifiers = 0);
    // Lets a key go before its time. False if it is not down.
    bool ReleaseKey(char virtualKey);

    // Begins a command that is held, or ends it. False if it is held already, or is not.
    bool HoldCommand(Command *command);
    bool EndCommand(Command *command);
    bool Holds(const Command *command) const;

    // The user's own finger on a button. False if it is there already, or is not.
    bool HoldButton(int button);
    bool ReleaseButton(int button);
    // Buttons that are down, the user's left out.
    std::vector<int> ButtonsDown() const;

    // Once a frame: continues the commands of keys that are down, and lets go of those whose time is up.
    void StepKeys();
    // The command bound to a key; null if there is none.
    Command *Bound(char virtualKey) const;

    // One button of a list that the library passes; see HostInput.cpp.
    void ChangeButton(int button, bool release, int pass);

  private:
    struct Key {
        int press; // tells presses of one key apart
        char character;
        char virtualKey;
        int modifiers;
        Command *command; // null if a plugin took the press, or none is bound
        int since;        // the frame in which it went down
        int until;        // the frame in which it goes up
    };
    struct Button {
        int presses = 0;   // not yet released
        int lastFrame = 0; // in which its command was run last
    };

    void LetGo(int press);

    Simulator &mSimulator;
    std::vector<Key> mKeys;
    std::map<int, Button> mButtons;
    std::vector<Command *> mHeldCommands; // by the user, without a key
    std::vector<int> mHeldButtons;        // by the user
    int mLastPress = 0;
};

} // namespace host

#endif
