/**
 * AVSK.h: the whole plugin interface in one include. The host interface
 * (AVSKHost.h) is for programs that embed the library and is not included.
 */
#ifndef AVSK_H
#define AVSK_H

#include "AVSKCamera.h"
#include "AVSKDataAccess.h"
#include "AVSKDisplay.h"
#include "AVSKGraphics.h"
#include "AVSKMenus.h"
#include "AVSKNavigation.h"
#include "AVSKPlanes.h"
#include "AVSKPlugins.h"
#include "AVSKProcessing.h"
#include "AVSKScenery.h"
#include "AVSKThreadLocal.h"
#include "AVSKTypes.h"
#include "AVSKUtilities.h"

#endif
