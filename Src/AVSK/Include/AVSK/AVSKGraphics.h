/**
 * AVSKGraphics.h: the host's drawing services.
 *
 * Each function forwards to one host service. The library checks no argument:
 * the host decides whether a pointer may be null and what a number means.
 * Positions are pixels with y upward.
 */
#ifndef AVSK_GRAPHICS_H
#define AVSK_GRAPHICS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Sets the graphics state, so that the host knows it. Forwards to the host
 * service setGraphicsState.
 *
 * @param a1  a number whose meaning is the host's.
 * @param a2  a number whose meaning is the host's.
 * @param a3  a number whose meaning is the host's.
 * @param a4  a number whose meaning is the host's.
 * @param a5  a number whose meaning is the host's.
 * @param a6  a number whose meaning is the host's.
 * @param a7  a number whose meaning is the host's.
 *
 * [main thread, drawing]
 */
AVSK_API void AVSKSetGraphicsState(int a1, int a2, int a3, int a4, int a5, int a6, int a7);

/**
 * Binds a 2-D texture. Forwards to the host service bindTexture2d.
 *
 * @param texture  the texture's number.
 * @param unit     the texture unit.
 *
 * [main thread, drawing]
 */
AVSK_API void AVSKBindTexture2d(int texture, int unit);

/**
 * Reserves texture numbers that are not in use. Forwards to the host service
 * generateTextureNumbers.
 *
 * @param outTextures  receives count numbers.
 * @param count        how many numbers to reserve.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGenerateTextureNumbers(int *outTextures, int count);

/**
 * Returns the number of one of the host's own textures. Forwards to the host
 * service getTexture.
 *
 * @param texture  the texture, in the host's numbering.
 * @return the texture's number; the host decides what it returns for an unknown texture.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKGetTexture(int texture);

/**
 * Converts world to local coordinates. Forwards to the host service
 * worldToLocal.
 *
 * @param a     the world point, in the host's order and units.
 * @param b     the world point, second number.
 * @param c     the world point, third number.
 * @param outX  receives the local point, in the host's units.
 * @param outY  receives the local point, second number.
 * @param outZ  receives the local point, third number.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKWorldToLocal(double a, double b, double c, double *outX, double *outY, double *outZ);

/**
 * Converts local to world coordinates. Forwards to the host service
 * localToWorld.
 *
 * @param x     the local point, in the host's units.
 * @param y     the local point, second number.
 * @param z     the local point, third number.
 * @param outA  receives the world point, in the host's order and units.
 * @param outB  receives the world point, second number.
 * @param outC  receives the world point, third number.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKLocalToWorld(double x, double y, double z, double *outA, double *outB, double *outC);

/**
 * Draws a translucent dark box. Forwards to the host service
 * drawTranslucentDarkBox.
 *
 * @param left    pixels.
 * @param top     pixels, upward.
 * @param right   pixels.
 * @param bottom  pixels, upward.
 *
 * [main thread, drawing]
 */
AVSK_API void AVSKDrawTranslucentDarkBox(int left, int top, int right, int bottom);

/**
 * Draws a text. Forwards to the host service drawString.
 *
 * @param colour         three numbers: red, green and blue, each from 0 to 1.
 * @param x              where the text starts, in pixels.
 * @param y              where the text starts, in pixels, upward.
 * @param text           UTF-8; not changed.
 * @param wordWrapWidth  the width in pixels at which lines break; null for one line.
 * @param font           the host's number of a font.
 *
 * [main thread, drawing]
 */
AVSK_API void AVSKDrawString(float *colour, int x, int y, char *text, int *wordWrapWidth, int font);

/**
 * Draws a number. Forwards to the host service drawNumber.
 *
 * @param colour    three numbers: red, green and blue, each from 0 to 1.
 * @param x         where the number starts, in pixels.
 * @param y         where the number starts, in pixels, upward.
 * @param value     the number.
 * @param digits    how many digits to draw before the decimal point.
 * @param decimals  how many digits to draw after it.
 * @param showSign  non-zero: a plus sign is drawn too.
 * @param font      the host's number of a font.
 *
 * [main thread, drawing]
 */
AVSK_API void AVSKDrawNumber(float *colour, int x, int y, double value, int digits, int decimals, int showSign,
                             int font);

/**
 * Reads the size of a font's characters. Forwards to the host service
 * getFontDimensions.
 *
 * @param font           the host's number of a font.
 * @param outCharWidth   receives the width of a character in pixels, may be null.
 * @param outCharHeight  receives the height of a character in pixels, may be null.
 * @param outDigitsOnly  receives 1 if the font has digits only, else 0; may be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetFontDimensions(int font, int *outCharWidth, int *outCharHeight, int *outDigitsOnly);

/**
 * Measures a text. Forwards to the host service measureString.
 *
 * @param font   the host's number of a font.
 * @param text   UTF-8.
 * @param count  how many characters to measure, as the host counts them.
 * @return the width in pixels.
 *
 * [main thread, initialized]
 */
AVSK_API float AVSKMeasureString(int font, const char *text, int count);

#ifdef __cplusplus
}
#endif

#endif
