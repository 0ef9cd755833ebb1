// Features, the switches by which a plugin asks for newer behaviour. Floor 3;
// defined in AVSKLoaderPlugins.cpp.
#ifndef AVSK_FEATURES_H
#define AVSK_FEATURES_H

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

enum FeatureID {
    kFeatureWantsReflections = 0,
    kFeatureUseNativePaths = 1,
    kFeatureCount = 2
};

extern const char *const kFeatureNames[kFeatureCount];

// The ID of a feature, or -1.
int AVSKFeatureToID(const char *name);
// A plugin's setting, or 0 if the plugin ID is invalid.
int AVSKHasFeatureInternal(int pluginID, int featureID);
// Whether paths from and to the dispatched plugin are converted.
bool AVSKNeedPathConvert();

#pragma GCC visibility pop

#endif
