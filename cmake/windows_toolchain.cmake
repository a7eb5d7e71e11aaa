# What both Windows toolchain files share; they set TXS_MINGW to the name of the target before.
#
# Programs are linked statically, the runtime of the compiler included: what a user installs is the
# program alone.
set(CMAKE_SYSTEM_NAME Windows)
# The compilers with POSIX threads: the others have no std::mutex.
set(CMAKE_C_COMPILER ${TXS_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TXS_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${TXS_MINGW}-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(ZLIB_USE_STATIC_LIBS ON)

# Made by cmake/build_windows_libraries.sh.
if(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
  set(TXS_CACHE "$ENV{XDG_CACHE_HOME}")
else()
  set(TXS_CACHE "$ENV{HOME}/.cache")
endif()
set(TXS_WINDOWS_LIBRARIES "${TXS_CACHE}/tx-windows-libraries/${TXS_MINGW}")
set(CMAKE_FIND_ROOT_PATH
    "${TXS_WINDOWS_LIBRARIES}/headers" "${TXS_WINDOWS_LIBRARIES}/libdeflate"
    "${TXS_WINDOWS_LIBRARIES}/googletest" "${TXS_WINDOWS_LIBRARIES}/libzip"
    "${TXS_WINDOWS_LIBRARIES}/wxwidgets" /usr/${TXS_MINGW}
    # What wx-config names is in the store.
    "${TXS_WINDOWS_LIBRARIES}")
set(wxWidgets_CONFIG_EXECUTABLE "${TXS_WINDOWS_LIBRARIES}/wxwidgets/bin/wx-config"
    CACHE FILEPATH "Tells where the wxWidgets for Windows is")

# Programs of this machine; everything else from the folders above, never from this machine.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/run_under_wine.sh")
