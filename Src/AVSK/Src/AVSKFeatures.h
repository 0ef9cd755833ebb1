// Switches by which a plugin asks for newer behaviour.
#ifndef AVSK_FEATURES_H
#define AVSK_FEATURES_H

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

enum AVSKFeatureID {
    kFeatureWantsReflections = 0,
    kFeatureUseNativePaths = 1,
    kFeatureCount = 2
};

extern const char *const kFeatureNames[kFeatureCount];

// The ID of a feature, -1 for an unknown name.
int AVSKFeatureToID(const char *name);
// A plugin's setting, 0 for an ID that is no plugin's.
int AVSKHasFeatureInternal(int pluginID, int featureID);
// Whether paths that the dispatched plugin gives and gets are converted.
bool AVSKNeedPathConvert();

#pragma GCC visibility pop

#endif
