// Finds the libraries that a plugin needs, as the dynamic linker would, without loading them.
#ifndef AVSK_HOST_VERDICT_LIBRARIES_H
#define AVSK_HOST_VERDICT_LIBRARIES_H

#include "Elf/ElfFile.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace host {

class Libraries {
  public:
    // Begins with the libraries of this process: what they export, plugins find in
    // the simulator too.
    Libraries();

    // What a file lacks.
    struct Lack {
        std::vector<std::string> libraries; // that were not found
        std::vector<std::string> symbols;   // that nothing defines; empty if a library was not found
    };
    Lack LackOf(const std::string &path, const ElfFile &file);

    // The file defines its exported symbols for all others.
    void Add(const ElfFile &file) { mDefined.insert(file.exported.begin(), file.exported.end()); }

  private:
    struct Library {
        std::string path; // empty: not found
        ElfFile file;
    };

    const Library &Find(const std::string &name, const std::string &neededBy, const ElfFile &file);
    // Adds a library that is needed, and those that it needs.
    void Collect(const std::string &name, const std::string &neededBy, const ElfFile &file, std::set<std::string> &seen,
                 std::set<std::string> &symbols, Lack &lack);

    std::map<std::string, std::string> mLoaded; // paths by names, of this process
    std::map<std::string, Library> mFound;      // by name and search path
    std::set<std::string> mDefined;
};

} // namespace host

#endif
