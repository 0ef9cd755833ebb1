/* A host that commits one fault. BadHost.c has the faults of the table and of hooks,
 * BadHostServices.cpp those of services. */
#ifndef AVSK_TESTS_BAD_HOST_H
#define AVSK_TESTS_BAD_HOST_H

#include "AVSK/AVSK.h"
#include "AVSK/AVSKHost.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What the host does wrong, and when; null for nothing. */
typedef struct Fault {
    const char *rule;
    void (*before)(void);   /* the start; may change the table */
    void (*started)(void);  /* after the start */
    void (*frame)(void);    /* instead of RunFrame() */
    void (*stopped)(void);  /* after the shutdown */
    float (*elapsed)(void); /* instead of the clock */
} Fault;

/* The last row has no rule. */
extern const Fault kServiceFaults[];

/* The table that the library gets, filled with services that answer neutrally. */
extern AVSKHostCallbacks *hostTable;
/* The number of the frame, from 1 on. */
extern int hostFrame;
extern const char kHostRoot[];

/* The clock as it should be. */
float GoodElapsed(void);
void RunFrame(void);

#ifdef __cplusplus
}
#endif

#endif
