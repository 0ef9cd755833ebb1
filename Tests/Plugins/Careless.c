/* Passes what the library does not check: null pointers, negative counts, unknown numbers, foreign pointers. */
#include <AVSK/AVSK.h>

#include <math.h>
#include <stddef.h>
#include <stdio.h>

static int Draw(int phase, int isBefore, void *refcon) {
    static int foreign, texture;
    AVSKMenuID menu = AVSKCreateMenu(NULL, AVSKFindPluginsMenu(), 99, NULL, NULL);
    AVSKDrawInfo place = {sizeof place, NAN, 0, 0, 0, 0, 0};
    (void)phase, (void)isBefore, (void)refcon;
    AVSKAppendMenuItem(menu, NULL, NULL, 0);
    AVSKSetMenuItemName(menu, 99, NULL, 0);
    AVSKGetScreenSize(NULL, NULL), AVSKGetMouseLocation(NULL, NULL);
    AVSKGenerateTextureNumbers(NULL, 1), AVSKGenerateTextureNumbers(&texture, -1);
    AVSKWorldToLocal(NAN, INFINITY, 0, NULL, NULL, NULL), AVSKLocalToWorld(NAN, INFINITY, 0, NULL, NULL, NULL);
    AVSKDrawString(NULL, 0, 0, NULL, NULL, -1), AVSKDrawNumber(NULL, 0, 0, NAN, -1, 1 << 30, 1, -1);
    AVSKGetFontDimensions(-1, NULL, NULL, NULL);
    AVSKMeasureString(-1, NULL, 1), AVSKMeasureString(0, "text", -1), AVSKMeasureString(0, "text", 1 << 30);
    AVSKSetUsersAircraft(""), AVSKGetNthAircraftModel(-1, NULL, NULL), AVSKPlaceUserAtAirport(NULL);
    AVSKSimulateKeyPress(-1, -1), AVSKCommandKeyStroke(-1), AVSKCommandButtonPress(-1), AVSKCommandButtonPress(0);
    AVSKSpeakString(NULL), AVSKDebugString(NULL), AVSKFindSymbol(NULL);
    AVSKFindCommand(NULL), AVSKCreateCommand(NULL, NULL), AVSKCreateCommand("", NULL);
    AVSKCommandBegin(&foreign), AVSKCommandBegin(NULL); /* held: continued in each frame, ended at the end */
    AVSKCommandOnce(&foreign), AVSKCommandEnd(AVSKFindCommand("missing"));
    AVSKGetNextNavAid(-1), AVSKFindNavAid(0, 0, 0, 0, 0, 0), AVSKGetNavAidInfo(-1, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    AVSKGetFMSEntryInfo(-1, 0, 0, 0, 0, 0, 0), AVSKSetFMSEntryLatLon(-1, NAN, NAN, 0), AVSKClearFMSEntry(-1);
    AVSKLoadObject(NULL), AVSKLoadObjectAsync(NULL, NULL, NULL), AVSKDrawObjects(&foreign, 1, &place, 0, 0);
    AVSKLookupObjects(NULL, NAN, NAN, NULL, NULL), AVSKLoadDataFile(1, "");
    return 1;
}

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    sprintf(outName, "Careless"), sprintf(outSignature, "avsk.test.careless"), sprintf(outDescription, "%s", "");
    return AVSKRegisterDrawCallback(Draw, 50, 0, NULL);
}

void AVPluginStop(void) { AVSKDebugString("Careless: the host survived\n"); }
