# Clang's compilers for Windows on ARM with the headers of mingw-w64 and of its C++ library.
set(CMAKE_SYSTEM_NAME WindowsCE)
set(CMAKE_SYSTEM_VERSION 6.0)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(CMAKE_C_COMPILER clang-16)
set(CMAKE_CXX_COMPILER clang++-16)
set(CMAKE_C_COMPILER_TARGET thumbv7-unknown-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET thumbv7-unknown-windows-gnu)
# There is no C library to link a trial program with.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
