// Judges plugin files without loading them, by the rules of FileRules.h.
#ifndef AVSK_HOST_VERDICT_FILE_CHECKS_H
#define AVSK_HOST_VERDICT_FILE_CHECKS_H

#include "Targets.h"

#include "Rules/Findings.h"

#include <vector>

namespace host {

// The findings of each file, in the order of the targets. Names that several of
// the files export are found too.
std::vector<std::vector<Finding>> JudgeFiles(const std::vector<Target> &targets);

// Whether a finding means that the file cannot be loaded at all.
bool PreventsLoading(const Finding &finding);

} // namespace host

#endif
