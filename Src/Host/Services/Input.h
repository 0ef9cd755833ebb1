// The keyboard and the joystick: what is down, and the commands bound to it.
#ifndef AVSK_HOST_SERVICES_INPUT_H
#define AVSK_HOST_SERVICES_INPUT_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Command;
struct Simulator;

// The bits of a key's flags.
enum KeyFlag {
    kKeyShift = 1,
    kKeyControl = 2,
    kKeyDown = 4,
    kKeyUp = 8,
};

class Input {
  public:
    // The simulator must not move.
    explicit Input(Simulator &simulator) : mSimulator(simulator) {}

    // Presses a key and releases it some frames later. A key that is already down
    // is released first. Its command begins unless a plugin consumes the press.
    // The modifiers are the flags of shift and control.
    void PressKey(char character, char virtualKey, int frames, int modifiers = 0);
    // Releases a key early. False if it is not down.
    bool ReleaseKey(char virtualKey);

    // Begins a command that is held, or ends it. False if it is held already, or is not.
    bool HoldCommand(Command *command);
    bool EndCommand(Command *command);
    bool Holds(const Command *command) const;

    // Presses or releases a button for the user. False if it is already in that state.
    bool HoldButton(int button);
    bool ReleaseButton(int button);
    // Buttons that plugins hold down.
    std::vector<int> ButtonsDown() const;

    // Once a frame: continues the commands of keys that are down, and releases keys whose time is over.
    void StepKeys();
    // The command bound to a key; null if there is none.
    Command *Bound(char virtualKey) const;
    // The name of that command; null if there is none.
    static const char *BoundName(int virtualKey);
    // The keys and buttons that are bound to a command: "F5, button 1". May be empty.
    static std::string BindingsOf(std::string_view command);

    // One button of a list that the library passes; see Input.cpp.
    void ChangeButton(int button, bool release, int pass);

  private:
    struct Key {
        int press; // tells presses of one key apart
        char character;
        char virtualKey;
        int modifiers;
        Command *command; // null if a plugin consumed the press or no command is bound
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
