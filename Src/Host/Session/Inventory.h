// What the plugins of a run have made and a user or another plugin can use. The
// scenarios of `avsk check` are made from it.
#ifndef AVSK_HOST_SESSION_INVENTORY_H
#define AVSK_HOST_SESSION_INVENTORY_H

#include <array>
#include <string>
#include <vector>

namespace host {

class Ledger;
struct Simulator;

struct Inventory {
    struct Plugin {
        std::string name;
        std::string signature;
        std::string path; // without links
        int windows = 0;
    };
    struct Dataref {
        std::string name;
        std::vector<std::string> accessors; // words of the session language: "floats"
        bool writable = false;
    };

    std::vector<Plugin> plugins;
    std::vector<std::string> items; // paths, as the word "menu" takes them
    std::vector<std::string> commands;
    std::vector<std::string> keys;           // of hot keys, as the word "key" takes them: "F5 shift"
    std::vector<std::array<int, 4>> windows; // left, top, right, bottom
    std::vector<Dataref> datarefs;
};

Inventory TakeInventory(const Simulator &simulator, const Ledger &owners);

} // namespace host

#endif
