// The comparisons of the program that is linked with the library only.
#include "Harness.h"

std::vector<Comparison> Comparisons() {
    std::vector<Comparison> comparisons;
    for (const auto &family :
         {DataAccessComparisons(), SharedDataComparisons(), ProcessingComparisons(), DisplayComparisons(),
          MenuComparisons(), CommandComparisons(), FolderComparisons(), PluginComparisons(), GrowthComparisons()})
        comparisons.insert(comparisons.end(), family.begin(), family.end());
    return comparisons;
}
