// Names of handles for traces and reports: of datarefs, commands, menus, hot keys
// and objects the name, of windows the rectangle, of flight loops the function.
// They are learned from the calls that create or find the handles.
#ifndef AVSK_HOST_OBSERVING_HANDLE_BOOK_H
#define AVSK_HOST_OBSERVING_HANDLE_BOOK_H

#include "Crossings/Crossing.h"
#include "Crossings/ValueText.h"

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

class HandleBook : public crossings::Observer, public crossings::HandleNames {
  public:
    HandleBook();
    ~HandleBook() override;
    HandleBook(const HandleBook &) = delete;
    HandleBook &operator=(const HandleBook &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing & /*crossing*/) override {}
    void Ends(const crossings::Crossing &crossing) override;

    std::string_view NameOf(const void *handle) const override;

  private:
    struct Entry {
        const crossings::Prototype *function = nullptr; // that created or found it
        std::string name;                               // as it is shown without a number
        std::string text;                               // the argument that is the name; empty if it is another one
        std::string_view shown;                         // with a number if others of that name exist
    };

    struct Recent {
        const void *handle = nullptr;
        const Entry *entry = nullptr;
        const void *source = nullptr; // the address of the name in the last call that found it
    };

    static constexpr std::size_t kRecent = 256;

    static std::size_t IndexOf(const void *handle);
    bool IsKnown(const crossings::Crossing &crossing, std::string_view text) const;

    const Entry *Find(const void *handle) const;

    std::unordered_map<const void *, Entry> mEntries; // none is ever removed
    // Those that were found lately, by some bits of the address.
    mutable std::array<Recent, kRecent> mRecent{};
    std::map<std::string, int> mCounts; // of handles by function and name
};

} // namespace host

#endif
