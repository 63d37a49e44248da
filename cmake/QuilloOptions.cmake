# Build flavours:
#   default          optimised with debug info; runs tests and benchmarks
#   QUILLO_SANITIZE  "address,undefined": the memory-error build that make test also runs
#   QUILLO_RTSAN     RealtimeSanitizer (clang >= 20): checks that the render path never
#                    allocates, frees, locks or blocks
#   QUILLO_WERROR    warnings are errors: the developer and CI builds (make turns it on);
#                    off by default so that a distribution's compiler can build a release
#   BUILD_TESTING    the tests (needs GoogleTest); the benchmarks follow it by default
option(QUILLO_RTSAN "Build with clang's RealtimeSanitizer" OFF)
set(QUILLO_SANITIZE "" CACHE STRING "Comma-separated -fsanitize= list (e.g. address,undefined)")
option(BUILD_TESTING "Build the tests" ON)
option(QUILLO_BENCH "Build the benchmarks" ${BUILD_TESTING})
option(QUILLO_WERROR "Treat compiler warnings as errors" OFF)

add_compile_options(-Wall -Wextra)
if(QUILLO_WERROR)
  add_compile_options(-Werror)
endif()
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
  cmake_parse_arguments(ARG "" "RTSAN_FILTER" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gmock GTest::gtest_main)
  set(filter "")
  if(QUILLO_RTSAN AND ARG_RTSAN_FILTER)
    set(filter TEST_FILTER "${ARG_RTSAN_FILTER}")
  endif()
  if(ARG_LABELS)
    gtest_discover_tests(${name} ${filter} DISCOVERY_TIMEOUT 120
                         PROPERTIES TIMEOUT 600 LABELS "${ARG_LABELS}" ENVIRONMENT "${QUILLO_TEST_ENVIRONMENT}")
  else()
    gtest_discover_tests(${name} ${filter} DISCOVERY_TIMEOUT 120
                         PROPERTIES TIMEOUT 600 ENVIRONMENT "${QUILLO_TEST_ENVIRONMENT}")
  endif()
endfunction()

# The tests' log lines go to the build tree, not the user's state folder.
set(QUILLO_TEST_ENVIRONMENT "XDG_STATE_HOME=${CMAKE_BINARY_DIR}/test-state")
