# 32-bit Windows through mingw-w64, POSIX thread flavour (std::thread and friends work in tools and tests).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# SSE2 is the baseline: the x87 unit rounds doubly and is slow at conversions. Hosts call with stacks aligned to 4 bytes,
# so every function that may keep SSE values on its stack realigns it.
# An array that was overrun ends the process before anything returns into what overran it.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign -fstack-protector-strong")
# -static alone leaves a component that imports nothing but system libraries.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -Wl,--enable-stdcall-fixup")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
