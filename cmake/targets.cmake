# The back-end of a platform interface is a source file of its own, chosen by this ending.
if(WIN32)
  set(TXS_BACK_END win32)
else()
  set(TXS_BACK_END host)
endif()

# Interface targets that every library and program of the house links, and the two functions that
# make a library of a folder and a test program of its tests.

add_library(txs_options INTERFACE)
target_compile_options(
  txs_options
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wshadow
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wold-style-cast)
if(WIN32)
  # Windows 7 and later; names that headers of Windows define as macros stay few.
  target_compile_definitions(
    txs_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT _WIN32_WINNT=0x0601)
endif()
if(TXS_WARNINGS_AS_ERRORS)
  target_compile_options(txs_options INTERFACE -Werror)
endif()
if(TXS_SANITIZE)
  # src/CMakeLists.txt asks for more: what costs at every access would double the tests' compilation.
  set(checks address,bool,bounds,builtin,enum,integer-divide-by-zero,nonnull-attribute,return)
  string(APPEND checks ,returns-nonnull-attribute,shift,signed-integer-overflow,unreachable,vla-bound)
  target_compile_options(txs_options INTERFACE -fsanitize=${checks} -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
  target_link_options(txs_options INTERFACE -fsanitize=address,undefined)
endif()
if(TXS_COVERAGE)
  target_link_options(txs_options INTERFACE --coverage)
endif()
if(TXS_FUZZ)
  # Assertions of the standard library stay on: a look beyond the end of a text is a finding, too.
  target_compile_options(
    txs_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                          -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
  target_link_options(txs_options INTERFACE -fsanitize=address,undefined)
endif()

# txs_add_library(<folder> SOURCES ... DEPENDS ...) makes the static library txs_<folder>. Its
# headers are included as "<folder>/<subject>.h", and each is compiled alone once (target
# all_verify_interface_header_sets), so that none leans on what its includer happened to include.
function(txs_add_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;DEPENDS" ${ARGN})
  set(target txs_${folder})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src FILES
                                  ${ARG_HEADERS})
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_link_libraries(${target} PUBLIC ${ARG_DEPENDS} PRIVATE txs_options)
endfunction()

# txs_add_windows_resources(<program> <description>) gives a program its icon, its version and its
# manifest. Does nothing on other systems, which keep all this elsewhere.
function(txs_add_windows_resources program description)
  if(NOT WIN32)
    return()
  endif()
  set(TXS_PROGRAM ${program})
  set(TXS_DESCRIPTION ${description})
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${program}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/resources/windows/program.rc.in ${resources} @ONLY)
  set_property(SOURCE ${resources} APPEND PROPERTY OBJECT_DEPENDS
               "${PROJECT_SOURCE_DIR}/resources/windows/program.manifest;${PROJECT_SOURCE_DIR}/resources/windows/tx_setup_wizard.ico")
  target_sources(${program} PRIVATE ${resources})
endfunction()

# What is under test is optimised, the tests are not, and the headers of GoogleTest are read once: most of
# the time of a build goes into tests. Debuggers need no more of them than lines.
set(TXS_TEST_OPTIONS -O0)
if(NOT WIN32)
  list(APPEND TXS_TEST_OPTIONS -g1)
endif()

# txs_add_test(<name> SOURCES ... DEPENDS ... [LABELS ...]) makes one GoogleTest program and registers
# it with CTest as a single test: starting a process per case would cost more than the cases.
function(txs_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} txs_options GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_options(${name} PRIVATE ${TXS_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM txs_test_headers)
  add_test(NAME ${name} COMMAND ${name})
  if(ARG_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}")
  endif()
endfunction()
