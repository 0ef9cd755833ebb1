// The drawing services: each function passes its arguments unchanged to one host
// service, without checks and without a dispatch guard. Owns no globals; called
// by plugins.
#include "AVSK/AVSKGraphics.h"

#include "AVSKHostTable.h"

#include "AVSK/AVSKDisplay.h"

void AVSKGetScreenSize(int *outWidth, int *outHeight) { gHooks->getScreenSize(outWidth, outHeight); }

// The last argument tells the host that a plugin asks; the library's own calls pass 0.
void AVSKGetMouseLocation(int *outX, int *outY) { gHooks->getMouseLocation(outX, outY, 1); }

void AVSKSetGraphicsState(int a1, int a2, int a3, int a4, int a5, int a6, int a7) {
    gHooks->setGraphicsState(a1, a2, a3, a4, a5, a6, a7);
}

void AVSKBindTexture2d(int texture, int unit) { gHooks->bindTexture2d(texture, unit); }

void AVSKGenerateTextureNumbers(int *outTextures, int count) { gHooks->generateTextureNumbers(outTextures, count); }

int AVSKGetTexture(int texture) { return gHooks->getTexture(texture); }

void AVSKWorldToLocal(double a, double b, double c, double *outX, double *outY, double *outZ) {
    gHooks->worldToLocal(a, b, c, outX, outY, outZ);
}

void AVSKLocalToWorld(double x, double y, double z, double *outA, double *outB, double *outC) {
    gHooks->localToWorld(x, y, z, outA, outB, outC);
}

void AVSKDrawTranslucentDarkBox(int left, int top, int right, int bottom) {
    gHooks->drawTranslucentDarkBox(left, top, right, bottom);
}

void AVSKDrawString(float *colour, int x, int y, char *text, int *wordWrapWidth, int font) {
    gHooks->drawString(colour, x, y, text, wordWrapWidth, font);
}

void AVSKDrawNumber(float *colour, int x, int y, double value, int digits, int decimals, int showSign, int font) {
    gHooks->drawNumber(colour, x, y, value, digits, decimals, showSign, font);
}

void AVSKGetFontDimensions(int font, int *outCharWidth, int *outCharHeight, int *outDigitsOnly) {
    gHooks->getFontDimensions(font, outCharWidth, outCharHeight, outDigitsOnly);
}

float AVSKMeasureString(int font, const char *text, int count) { return gHooks->measureString(font, text, count); }
