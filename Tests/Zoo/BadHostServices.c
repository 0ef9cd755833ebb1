/* The faults of services. */
#include "BadHost.h"

const Fault kServiceFaults[] = {{0}};
