/**
 * AVSKGraphics.h: the simulator's drawing services, for use inside draw
 * callbacks and window draw functions.
 *
 * Each call reaches one service of the simulator with the arguments as they
 * are; the library tests none of them. Positions are pixels with y upward.
 */
#ifndef AVSK_GRAPHICS_H
#define AVSK_GRAPHICS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Sets the graphics state through the simulator, which then knows it.
 *
 * @param a1,a2,a3,a4,a5,a6,a7  seven numbers whose meaning is the simulator's.
 */
AVSK_API void AVSKSetGraphicsState(int a1, int a2, int a3, int a4, int a5, int a6, int a7);

/**
 * Binds a 2-D texture through the simulator.
 *
 * @param texture  its number.
 * @param unit     the texture unit.
 */
AVSK_API void AVSKBindTexture2d(int texture, int unit);

/**
 * Asks the simulator for texture numbers that nobody else uses.
 *
 * @param outTextures  room for count numbers.
 * @param count        how many.
 */
AVSK_API void AVSKGenerateTextureNumbers(int *outTextures, int count);

/**
 * Asks for one of the simulator's own textures.
 *
 * @param texture  which, in the simulator's numbering.
 * @return its texture number.
 */
AVSK_API int AVSKGetTexture(int texture);

/**
 * Converts world to local coordinates.
 *
 * @param a,b,c              the world point, in the simulator's order.
 * @param outX,outY,outZ     receive the local point.
 */
AVSK_API void AVSKWorldToLocal(double a, double b, double c, double *outX, double *outY, double *outZ);

/**
 * Converts local to world coordinates.
 *
 * @param x,y,z              the local point.
 * @param outA,outB,outC     receive the world point, in the simulator's order.
 */
AVSK_API void AVSKLocalToWorld(double x, double y, double z, double *outA, double *outB, double *outC);

/**
 * Draws a dark box through which the scene shines.
 *
 * @param left,top,right,bottom  the rectangle.
 */
AVSK_API void AVSKDrawTranslucentDarkBox(int left, int top, int right, int bottom);

/**
 * Draws a text.
 *
 * @param colour         red, green and blue, 0 to 1.
 * @param x,y            where it starts.
 * @param text           UTF-8; not changed.
 * @param wordWrapWidth  a width in pixels at which lines break, or null.
 * @param font           the simulator's number of a font.
 */
AVSK_API void AVSKDrawString(float *colour, int x, int y, char *text, int *wordWrapWidth, int font);

/**
 * Draws a number.
 *
 * @param colour    red, green and blue, 0 to 1.
 * @param x,y       where it starts.
 * @param value     the number.
 * @param digits    digits before the point.
 * @param decimals  digits behind it.
 * @param showSign  non-zero: also a plus sign is shown.
 * @param font      the simulator's number of a font.
 */
AVSK_API void AVSKDrawNumber(float *colour, int x, int y, double value, int digits, int decimals, int showSign,
                             int font);

/**
 * Asks for the size of a font.
 *
 * @param font           the simulator's number of a font.
 * @param outCharWidth   receives the width of a character in pixels.
 * @param outCharHeight  receives the height.
 * @param outDigitsOnly  receives whether it has digits only.
 */
AVSK_API void AVSKGetFontDimensions(int font, int *outCharWidth, int *outCharHeight, int *outDigitsOnly);

/**
 * Measures a text.
 *
 * @param font   the simulator's number of a font.
 * @param text   UTF-8.
 * @param count  how much of it, in characters as the simulator counts them.
 * @return its width in pixels.
 */
AVSK_API float AVSKMeasureString(int font, const char *text, int count);

#ifdef __cplusplus
}
#endif

#endif
