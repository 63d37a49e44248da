# Build flavours:
#   default          optimised with debug info; runs tests and benchmarks
#   QUILLO_SANITIZE  "address,undefined": the memory-error build that make test also runs
#   QUILLO_RTSAN     RealtimeSanitizer (clang >= 20): checks that the render path never
#                    allocates, frees, locks or blocks
option(QUILLO_RTSAN "Build with clang's RealtimeSanitizer" OFF)
set(QUILLO_SANITIZE "" CACHE STRING "Comma-separated -fsanitize= list (e.g. address,undefined)")
option(QUILLO_BENCH "Build the benchmarks" ON)

add_compile_options(-Wall -Wextra -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Debian 12's libstdc++ calls std::get_temporary_buffer inside stable_sort,
  # which newer clang reports as deprecated from within the system header.
  add_compile_options(-Wno-deprecated-declarations)
endif()

if(QUILLO_SANITIZE)
  add_compile_options(-fsanitize=${QUILLO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUILLO_SANITIZE})
endif()

if(QUILLO_RTSAN)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" OR CMAKE_CXX_COMPILER_VERSION VERSION_LESS 20)
    message(FATAL_ERROR "QUILLO_RTSAN needs clang 20 or later (clang++-22)")
  endif()
  add_compile_options(-fsanitize=realtime)
  # clang 22 flags libstdc++ 12's own use of std::get_temporary_buffer (in
  # std::stable_sort) as deprecated; that is not our code.
  add_compile_options(-Wno-deprecated-declarations)
  add_link_options(-fsanitize=realtime)
  add_compile_definitions(QUILLO_RTSAN=1)
endif()

# One gtest executable per source folder, its cases registered with CTest.
# LABELS (optional) become CTest labels of every case; the RealtimeSanitizer
# tree runs the suites labelled "realtime".
function(quillo_add_test_suite name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gmock GTest::gtest_main)
  if(ARG_LABELS)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 600 LABELS "${ARG_LABELS}")
  else()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 600)
  endif()
endfunction()
