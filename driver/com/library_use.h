// What keeps the component loaded: objects, references to the class factory, and its locks.
#pragma once

namespace corvane {

// For any thread.
void KeepLibrary();
void LetLibraryGo();
bool LibraryInUse();

// Keeps the library loaded for as long as it exists. To be the first base of a class, which is destroyed last.
class LibraryUse {
public:
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;

protected:
    LibraryUse() { KeepLibrary(); }
    ~LibraryUse() { LetLibraryGo(); }
};

}  // namespace corvane
