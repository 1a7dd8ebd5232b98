#include "driver/com/library_use.h"

#include <windows.h>

namespace corvane {

namespace {

LONG Uses = 0;

}  // namespace

void KeepLibrary() {
    InterlockedIncrement(&Uses);
}

void LetLibraryGo() {
    InterlockedDecrement(&Uses);
}

bool LibraryInUse() {
    return InterlockedCompareExchange(&Uses, 0, 0) != 0;
}

}  // namespace corvane
