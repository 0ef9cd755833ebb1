// A value that a variable has until the end of a scope, also when an exception
// ends it: what the library sets for a call is restored after the call.
#ifndef AVSK_SCOPED_VALUE_H
#define AVSK_SCOPED_VALUE_H

#include <utility>

template <class T>
class [[nodiscard]] AVSKScopedValue {
  public:
    AVSKScopedValue(T &changed, T value) : variable(changed), before(std::exchange(changed, value)) {}
    ~AVSKScopedValue() { variable = before; }
    AVSKScopedValue(const AVSKScopedValue &) = delete;
    AVSKScopedValue &operator=(const AVSKScopedValue &) = delete;

  private:
    T &variable;
    const T before;
};

#endif
