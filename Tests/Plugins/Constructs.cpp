// Fault: the same in a plugin that starts, under a signature of its file.
#include "ConstructsOnly.cpp"

#include <cstring>

int AVPluginStart(char * /*outName*/, char *outSignature, char * /*outDescription*/) {
    std::strcpy(outSignature, "zoo.constructs");
    return 1;
}
