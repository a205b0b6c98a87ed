# Warnings for the project's own code; third-party headers come in as system
# headers (pkg-config and imported targets mark them so).
function(morvane_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
  # GCC 12 at -O3 reports impossible overlaps inside std::string's own copies
  # (a known false alarm in the standard library headers).
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()

# The sample documents (standard public JSON examples) that tests and
# benchmarks read; they live beside the repository, not in it.
set(MORVANE_SHARED_DATA_DIR "${PROJECT_SOURCE_DIR}/../shared/data" CACHE PATH
    "Folder of the shared sample data read by tests and benchmarks")

# morvane_test(NAME source...): one GoogleTest executable, registered with CTest
# test by test. Extra libraries can be linked by the caller afterwards.
function(morvane_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE Morvane::morvane morvane_test_support GTest::gtest GTest::gmock GTest::gtest_main)
  morvane_warnings(${name})
  target_compile_definitions(${name} PRIVATE
    MORVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    MORVANE_SHARED_DATA_DIR="${MORVANE_SHARED_DATA_DIR}")
  # Re-entrancy harness runs are long in the sanitizer build, short otherwise.
  if(MORVANE_ASAN)
    target_compile_definitions(${name} PRIVATE MORVANE_LONG_REENTRANCY_RUNS=1)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()

# morvane_bench(NAME source...): a benchmark program; it prints its GOAL lines.
function(morvane_bench name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE Morvane::morvane benchmark::benchmark)
  morvane_warnings(${name})
  target_compile_definitions(${name} PRIVATE
    MORVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    MORVANE_SHARED_DATA_DIR="${MORVANE_SHARED_DATA_DIR}")
endfunction()

# morvane_layer_sources(): every .cpp file of the calling layer folder, in
# every subfolder (ui/core, ui/controls, detail/ ...), belongs to the library.
# Recursive on purpose: a new subfolder cannot be silently left out.
function(morvane_layer_sources)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  target_sources(morvane PRIVATE ${sources})
endfunction()
