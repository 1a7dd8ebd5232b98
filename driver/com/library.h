// The component's file as a loaded library: who keeps it loaded, and where it lies.
#pragma once

#include <windows.h>

#include <string>

namespace corvane {

// Objects, references to the class factory and its locks each keep the library. Any thread.
void KeepLibrary();
void LetLibraryGo();

// Keeps the library for as long as it lives. As the first base of a class it goes last.
class LibraryUse {
public:
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;

protected:
    LibraryUse() { KeepLibrary(); }
    ~LibraryUse() { LetLibraryGo(); }
};

// Full path of the component's file. Throws Failure.
std::wstring ModulePath();

}  // namespace corvane
