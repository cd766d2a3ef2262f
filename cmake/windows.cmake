# What both Windows widths share. The file that includes this one sets `triplet`.
#
# QUORIX_WINDOWS_PREFIXES  folders with the static libxml2, expat and OpenSSL of this width
# QUORIX_WINDOWS_EMULATOR  command that runs a program of this width; without it tests are built, not run
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triplet} ${QUORIX_WINDOWS_PREFIXES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUORIX_WINDOWS_PREFIXES)

# Nothing but the system's own libraries may be needed where the component is installed.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")
set(OPENSSL_USE_STATIC_LIBS TRUE)
set(CMAKE_C_FLAGS_INIT "-DLIBXML_STATIC -DXML_STATIC")
set(CMAKE_CXX_FLAGS_INIT "-DLIBXML_STATIC -DXML_STATIC")

set(CMAKE_CROSSCOMPILING_EMULATOR ${QUORIX_WINDOWS_EMULATOR})
