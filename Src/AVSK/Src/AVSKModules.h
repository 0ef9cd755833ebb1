// What the modules offer the core: the core's one door upward. Each function
// is defined in the module of its name.
#ifndef AVSK_MODULES_H
#define AVSK_MODULES_H

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

// Called when a plugin is unloaded: gives back everything it owns.
void AVSKCameraCleanupHook(int pluginID);
void AVSKCommandCleanupHook(int pluginID);
void AVSKDataRefsCleanupHook(int pluginID);
void AVSKDisplayCleanupHook(int pluginID);
void AVSKMenuCleanupHook(int pluginID);
void AVSKPlaneCleanupHook(int pluginID);
void AVSKProcessingCleanupHook(int pluginID);
void AVSKSceneryCleanupHook(int pluginID);
void AVSKSharedDataCleanupHook(int pluginID);

// Called before a plugin is disabled: takes what it may hold only while enabled.
void AVSKCameraDisableHook(int pluginID);
void AVSKDisplayDisableHook(int pluginID);
void AVSKPlaneDisableHook(int pluginID);

// Tell whether the module holds anything on a plugin's account.
bool AVSKCameraHolds(int pluginID);
bool AVSKCommandHolds(int pluginID);
bool AVSKDataRefsHolds(int pluginID);
bool AVSKDisplayHolds(int pluginID);
bool AVSKMenuHolds(int pluginID);
bool AVSKPlaneHolds(int pluginID);
bool AVSKProcessingHolds(int pluginID);
bool AVSKSceneryHolds(int pluginID);
bool AVSKSharedDataHolds(int pluginID);

// What the host's hooks hand over to.
void AVSKInitMenus();
int AVSKAdjustCamera(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);
void AVSKReleaseCamera();
void AVSKReleaseCameraInternal(int force);
int AVSKDispatchCommandHook(void *command, int begin, int end, int before);
void AVSKCommandRepeatHook();
void AVSKDoRepeatedButtons();
void AVSKHandleUpdatePlaneNameAndPath(int index, char *name, char *path);
int AVSKHandleGetNumberPlanesToHandle(int count, int flag);
int AVSKDisplayDoDrawingHook(int hostDrawCode, int isReflection);
int AVSKDisplayMouseClickHook(int x, int y, int mouseStatus);
void AVSKDisplayMouseDragHook();
int AVSKDisplayKeyPressHook(char key, int flags, char virtualKey);
int AVSKDisplayCursorHook(int x, int y);
int AVSKDisplayScrollWheelHook(int x, int y, int wheel, int clicks);
int AVSKDispatchHotKey(char virtualKey, int flags);
int AVSKDoFlightLoopProcessing(float elapsedTime, int phase);
int AVSKHandleMenuItemPick(int itemID);
int AVSKHandleMenuItemCheck(void *hostMenu, int index, int *outCheck);
int AVSKHandleMenuItemEnable(void *hostMenu, int index);

#pragma GCC visibility pop

#endif
