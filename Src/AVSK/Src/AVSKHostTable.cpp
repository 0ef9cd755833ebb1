// The host's table as the library holds it, and the log. Owns gHooks, gSelf
// and gDirSeparator. AVSKInitializePlugins sets the table, every module reads
// it; plugins and the whole library write to the log.
#include "AVSKHostTable.h"

#include "AVSK/AVSKUtilities.h"

const AVSKHostCallbacks *gHooks = nullptr;
AVSKWord gSelf = 0;
char gDirSeparator[2] = "";

void SetHostTable(const AVSKHostCallbacks *table, AVSKWord self) {
    gSelf = self;
    gHooks = table;
    gDirSeparator[0] = '/';
}

void AVSKDebugString(const char *text) { gHooks->debugString(text); }

void WriteLog(std::initializer_list<const char *> pieces) {
    for (const char *piece : pieces)
        AVSKDebugString(piece);
}
