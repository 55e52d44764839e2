# Cross build for 64-bit Windows with the mingw-w64 posix-thread compilers.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(ZOR_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${ZOR_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZOR_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${ZOR_MINGW_PREFIX}-windres)
set(CMAKE_OBJDUMP ${ZOR_MINGW_PREFIX}-objdump)
set(ZOR_WINDMC ${ZOR_MINGW_PREFIX}-windmc)

set(CMAKE_FIND_ROOT_PATH /usr/${ZOR_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows programs built here run under Wine; CTest and gtest discovery go through this wrapper.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-wine.sh)
