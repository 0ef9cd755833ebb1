/* The inhabitants of the zoo: each breaks one rule and no other. */
#ifndef AVSK_TESTS_ZOO_H
#define AVSK_TESTS_ZOO_H

#include "AVSK/AVSK.h"

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What an inhabitant does, and when; null for nothing. */
typedef struct Inhabitant {
    const char *rule;
    void (*start)(void);
    void (*enable)(void);
    void (*frame)(void); /* in a flight loop */
    void (*draw)(void);  /* in a draw callback */
    void (*disable)(void);
    void (*stop)(void);
    void (*answer)(char *name, char *signature); /* changes what the start answers */
} Inhabitant;

/* One table for each family of rules. The last row has no rule. */
extern const Inhabitant kArguments[];
extern const Inhabitant kDatarefs[];
extern const Inhabitant kLife[];
extern const Inhabitant kOpenGL[];
extern const Inhabitant kPlace[];
extern const Inhabitant kState[];

/* The buffer of AVPluginStart for the description, during that call. */
extern char *zooDescription;

#ifdef __cplusplus
}
#endif

#endif
