// Gives a variable a value until the end of the scope and then restores it,
// also when an exception ends the scope. Floor 0.
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
