# Cross-compiles for Windows. VARDEL_PROCESSOR is x86_64 or i686.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${VARDEL_PROCESSOR})
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VARDEL_PROCESSOR)
set(triple ${VARDEL_PROCESSOR}-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# The server runs inside hosts and reads what they hand it.
set(CMAKE_CXX_FLAGS_INIT "-fstack-protector-strong")
if(VARDEL_PROCESSOR STREQUAL i686)
  # Doubles are 64 bits wide, whatever precision a host has set for its floating-point unit, and hosts
  # may call with a stack that is aligned to 4 bytes only.
  string(APPEND CMAKE_CXX_FLAGS_INIT " -msse2 -mfpmath=sse -mstackrealign")
endif()
# File names in debug information do not depend on where the project lies.
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH root)
foreach(language C CXX)
  string(APPEND CMAKE_${language}_FLAGS_INIT
    " -ffile-prefix-map=${root}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build")  # the last first
endforeach()
