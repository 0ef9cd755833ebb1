// Matches names with fnmatch; see NamePattern.h.
#include "NamePattern.h"

#include "NearestName.h"
#include "UsageError.h"

#include <algorithm>
#include <iterator>

#include <fnmatch.h>

namespace host {

std::vector<std::string> SelectNames(const std::vector<std::string> &names, const std::string &pattern,
                                     const std::string &list) {
    std::string glob = pattern.find('*') == std::string::npos ? "*" + pattern + "*" : pattern;
    for (std::size_t at = 0; (at = glob.find_first_of("[]?\\", at)) != std::string::npos; at += 2)
        glob.insert(at, "\\"); // only * is special
    std::vector<std::string> selected;
    std::copy_if(names.begin(), names.end(), std::back_inserter(selected),
                 [&glob](const std::string &name) { return fnmatch(glob.c_str(), name.c_str(), FNM_CASEFOLD) == 0; });
    if (selected.empty()) {
        const std::string nearest = DidYouMean(pattern, names);
        throw UsageError("no " + list.substr(0, list.size() - 1) + " matches '" + pattern + "'" +
                         (nearest.empty() ? ": '" + list + "' without a pattern lists all" : nearest));
    }
    return selected;
}

} // namespace host
