#pragma once
// The host error number a call raises, 0 when it raises none: tests compare error numbers.

#include "base/error.hpp"

namespace korvex::test {

template <class Fn>
int ErrorOf(Fn fn) {
    try {
        fn();
    } catch (const host::HostError& e) {
        return e.Number();
    }
    return 0;
}

}  // namespace korvex::test
