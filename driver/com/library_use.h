// Who keeps the component loaded: objects, references to the class factory, and its locks.
#pragma once

namespace corvane {

// Any thread.
void KeepLibrary();
void LetLibraryGo();
bool LibraryInUse();

// Keeps the library for as long as it lives. As the first base of a class it goes last.
class LibraryUse {
public:
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;

protected:
    LibraryUse() { KeepLibrary(); }
    ~LibraryUse() { LetLibraryGo(); }
};

}  // namespace corvane
