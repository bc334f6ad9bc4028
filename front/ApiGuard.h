// ApiGuard - keeps C++ exceptions (in practice std::bad_alloc) from crossing
// the C interface: the export prints one line and returns its neutral result.
// Thread-safety: stateless.
#pragma once

#include <cstdio>
#include <exception>

namespace PelmoraLib {

template <class Result, class Body>
Result Guarded(const char* exportName, Result neutral, Body body) {
    try {
        return body();
    } catch (const std::exception& error) {
        printf("%s Error: %s\n", exportName, error.what());
    } catch (...) {
        printf("%s Error: unknown exception\n", exportName);
    }
    return neutral;
}

template <class Body>
void Guarded(const char* exportName, Body body) {
    Guarded(exportName, 0, [&] {
        body();
        return 0;
    });
}

}  // namespace PelmoraLib
