// What the modules offer the core and the hooks: the core's one door upward.
// Floor 3; each function is defined in the module of its name.
//
// The private functions and types that bear the public prefix, here and in the
// other private headers, keep it because readers outside rely on these names.
#ifndef AVSK_MODULES_H
#define AVSK_MODULES_H

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

// Clean-up functions, called when a plugin is unloaded: release everything it owns.
void AVSKCameraCleanupHook(int pluginID);
void AVSKCommandCleanupHook(int pluginID);
void AVSKDataRefsCleanupHook(int pluginID);
void AVSKDisplayCleanupHook(int pluginID);
void AVSKMenuCleanupHook(int pluginID);
void AVSKPlaneCleanupHook(int pluginID);
void AVSKProcessingCleanupHook(int pluginID);
void AVSKSceneryCleanupHook(int pluginID);
void AVSKSharedDataCleanupHook(int pluginID);

// Disable functions, called before a plugin is disabled: release what it may
// hold only while enabled.
void AVSKCameraDisableHook(int pluginID);
void AVSKDisplayDisableHook(int pluginID);
void AVSKPlaneDisableHook(int pluginID);

// Tell whether a module holds anything that a plugin owns.
bool CameraHolds(int pluginID);
bool CommandsHold(int pluginID);
bool DataRefsHold(int pluginID);
bool DisplayHolds(int pluginID);
bool MenusHold(int pluginID);
bool PlanesHold(int pluginID);
bool ProcessingHolds(int pluginID);
bool SceneryHolds(int pluginID);
bool SharedDataHolds(int pluginID);

// Handlers: each hook calls one. AVSKInitMenus runs when the host starts the library.
void AVSKInitMenus();
int AVSKAdjustCamera(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);
void AVSKReleaseCamera();
int AVSKDispatchCommandHook(void *command, int begin, int end, int before);
void AVSKCommandRepeatHook();
void AVSKDoRepeatedButtons();
void AVSKHandleUpdatePlaneNameAndPath(int index, char *name, char *path);
int AVSKHandleGetNumberPlanesToHandle(int count, int flag);
int AVSKDisplayDoDrawingHook(int hostDrawCode, int isReflection);
int AVSKDisplayMouseClickHook(int x, int y, int mouseStatus);
int AVSKDisplayKeyPressHook(char key, int flags, char virtualKey);
int AVSKDisplayCursorHook(int x, int y);
int AVSKDisplayScrollWheelHook(int x, int y, int wheel, int clicks);
int AVSKDoFlightLoopProcessing(float elapsedTime, int phase);
int AVSKHandleMenuItemPick(int itemID);
int AVSKHandleMenuItemCheck(void *hostMenu, int index, int *outCheck);
int AVSKHandleMenuItemEnable(void *hostMenu, int index);

// Handlers that only their own modules call.
int AVSKDispatchHotKey(char virtualKey, int flags);
void AVSKDisplayMouseDragHook();
void AVSKReleaseCameraInternal(int force);

#pragma GCC visibility pop

#endif
