// The error of a request that cannot be met as it was made.
#ifndef AVSK_HOST_COMMON_USAGE_ERROR_H
#define AVSK_HOST_COMMON_USAGE_ERROR_H

#include <stdexcept>

namespace host {

// Its text is one line: what is wrong, where, and what to do. The program prints it and exits with status 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace host

#endif
