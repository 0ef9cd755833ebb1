// Fault: a static constructor and destructor that call the library, in a plugin that starts.
#include "ConstructsOnly.cpp"

#include <cstring>

int AVPluginStart(char * /*outName*/, char *outSignature, char * /*outDescription*/) {
    std::strcpy(outSignature, "zoo.constructs");
    return 1;
}
