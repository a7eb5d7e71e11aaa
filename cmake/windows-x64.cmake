# 64-bit Windows, cross-built with mingw-w64.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TXS_MINGW x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows_toolchain.cmake)
