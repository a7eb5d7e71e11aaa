# 32-bit Windows, cross-built with mingw-w64: what is shipped.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TXS_MINGW i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows_toolchain.cmake)
