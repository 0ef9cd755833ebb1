# Builds for 32-bit x86 Linux with the default compiler (Debian: g++-multilib).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)

foreach(language C CXX)
  # SSE arithmetic rounds every result to its type; x87 keeps excess precision.
  set(CMAKE_${language}_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
endforeach()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_C_FLAGS_INIT CMAKE_CXX_FLAGS_INIT)

# No emulator: an x86-64 kernel executes 32-bit programs.
set(CMAKE_CROSSCOMPILING_EMULATOR "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
