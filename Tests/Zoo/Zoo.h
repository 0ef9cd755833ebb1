/* The inhabitants of the zoo: each breaks one rule and no other. */
#ifndef AVSK_TESTS_ZOO_H
#define AVSK_TESTS_ZOO_H

#include "AVSK/AVSK.h"

#include <stddef.h>

/* What an inhabitant does, and when; null for nothing. */
typedef struct Inhabitant {
    const char *rule;
    void (*start)(void);
    void (*enable)(void);
    void (*frame)(void); /* in a flight loop */
    void (*disable)(void);
    void (*stop)(void);
} Inhabitant;

/* One table for each family of rules. The last row has no rule. */
extern const Inhabitant kArguments[];
extern const Inhabitant kDatarefs[];
extern const Inhabitant kPlace[];

/* The buffer of AVPluginStart for the description, during that call. */
extern char *zooDescription;

#endif
