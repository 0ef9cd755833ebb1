// Stores texts for ever; see Interned.h. Owns them. Only the observed thread calls it.
#include "Interned.h"

#include <unordered_set>
#include <utility>

namespace crossings {

const std::string &Interned(std::string text) {
    static auto &texts = *new std::unordered_set<std::string>;
    return *texts.insert(std::move(text)).first;
}

} // namespace crossings
