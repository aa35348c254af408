# The building blocks of the tree: a layer, a test program, a benchmark and a fuzz target are one line each.

find_package(FastFloat REQUIRED)
find_library(SLEEF_LIBRARY sleef REQUIRED)
find_package(BISON 3.8 REQUIRED)

add_library(torvelan_flags INTERFACE)
target_compile_options(torvelan_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fno-math-errno -fno-trapping-math -ffp-contract=off
  -fstack-protector-strong -fno-semantic-interposition)
# clang's -Wconversion asks for more than that of GCC, and it warns of a loop that sanitizers keep from being vectorised;
# GCC 12 takes its own std::string for an overlap (-Wrestrict), a reference count for a use after the last release, and a
# test's replaced operator new for a mismatch.
target_compile_options(torvelan_flags INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion;-Wno-pass-failed>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-use-after-free;-Wno-mismatched-new-delete>)
target_compile_definitions(torvelan_flags INTERFACE $<$<NOT:$<CONFIG:Release>>:_GLIBCXX_ASSERTIONS>)
if(TORVELAN_SANITIZE)
  add_compile_options(-fsanitize=${TORVELAN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TORVELAN_SANITIZE})
  add_compile_definitions(TORVELAN_SANITIZED)
  # GCC 12 loses sight of what is initialised among the checks.
  target_compile_options(torvelan_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  if(TORVELAN_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
else()
  target_compile_options(torvelan_flags INTERFACE $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
  target_link_options(torvelan_flags INTERFACE -Wl,-z,relro,-z,now)
endif()

# The shared library is optimised across its files: small accessors of one layer are called everywhere in the next. The
# objects hold machine code as well, so that the test programs link in no time.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT TORVELAN_SANITIZE)
  set(TORVELAN_LTO ON)
endif()

set_property(GLOBAL PROPERTY TORVELAN_LAYERS "")

# torvelan_layer(<name> <folder> [LIBS ...]): the .cpp files and *.y grammars of a folder as an object library.
function(torvelan_layer name folder)
  cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
  file(GLOB grammars CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.y)
  foreach(grammar IN LISTS grammars)
    get_filename_component(stem ${grammar} NAME_WE)
    set(output ${CMAKE_BINARY_DIR}/generated/${stem}.cpp)
    bison_target(${stem} ${grammar} ${output} COMPILE_FLAGS "-Wall -Werror")
    set_source_files_properties(${output} PROPERTIES COMPILE_OPTIONS
      "-Wno-conversion;-Wno-shadow;-Wno-sign-conversion;$<$<CXX_COMPILER_ID:GNU>:-Wno-free-nonheap-object>")
    list(APPEND sources ${output})
  endforeach()
  if(NOT sources)
    return()
  endif()
  add_library(torvelan_${name} OBJECT ${sources})
  target_include_directories(torvelan_${name} PUBLIC
    ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/Source ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(torvelan_${name} PRIVATE torvelan_flags PUBLIC ${arg_LIBS} FastFloat::fast_float)
  if(TORVELAN_LTO)
    target_compile_options(torvelan_${name} PRIVATE -flto=auto -ffat-lto-objects)
  endif()
  set_property(GLOBAL APPEND PROPERTY TORVELAN_LAYERS ${name})
endfunction()

# Links layers into a target: all of them, or those up to and including the one named.
function(torvelan_link_layers target)
  get_property(layers GLOBAL PROPERTY TORVELAN_LAYERS)
  foreach(layer IN LISTS layers)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:torvelan_${layer}>)
    get_target_property(libs torvelan_${layer} INTERFACE_LINK_LIBRARIES)
    target_link_libraries(${target} PRIVATE ${libs})
    if(ARGC GREATER 1 AND layer STREQUAL ARGV1)
      break()
    endif()
  endforeach()
  target_link_libraries(${target} PRIVATE ${CMAKE_DL_LIBS})
endfunction()

# What every program of the tree that sees internals has: the include roots, the flags, the objects of the layers.
function(torvelan_internal_program name)
  target_include_directories(${name} PRIVATE
    ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/Source ${CMAKE_BINARY_DIR}/generated)
  target_compile_definitions(${name} PRIVATE TORVELAN_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE torvelan_flags)
  torvelan_link_layers(${name} ${ARGN})
endfunction()

# torvelan_test(<name> <folder> [LAYER layer] [LIBS ...] [PLAIN]): the .cpp files of a folder as one GoogleTest program,
# linked to the objects of the layers up to LAYER (all by default). Each test is a ctest; unless PLAIN the whole program
# is one more, run under a locale with a decimal comma.
function(torvelan_test name folder)
  cmake_parse_arguments(arg "PLAIN" "LAYER" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  torvelan_internal_program(${name} ${arg_LAYER})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE torvelan_test_main ${arg_LIBS})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 DISCOVERY_MODE PRE_TEST)
  if(NOT arg_PLAIN)
    torvelan_locale_test(${name})
  endif()
endfunction()

# The same program again with LC_ALL set to a locale of the tests' own making.
function(torvelan_locale_test name)
  add_test(NAME locale.${name} COMMAND ${name} --gtest_brief=1)
  set_tests_properties(locale.${name} PROPERTIES FIXTURES_REQUIRED comma_locale
    ENVIRONMENT "LOCPATH=${TORVELAN_LOCALES};LC_ALL=de_DE.UTF-8;TORVELAN_TEST_DECIMAL=,")
endfunction()

# torvelan_bench(<name> [SOURCES ...]): bench/<name>.cpp as the Google Benchmark program bench_<name>, linked to the shared
# library as a host is.
function(torvelan_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES" ${ARGN})
  add_executable(bench_${name} ${name}.cpp ${arg_SOURCES})
  target_link_libraries(bench_${name} PRIVATE
    torvelan_flags Torvelan::torvelan benchmark::benchmark FastFloat::fast_float)
endfunction()

# torvelan_fuzz(<name>): fuzz/<name>.cpp, which defines LLVMFuzzerTestOneInput, as the program fuzz_<name>: a libFuzzer
# target with TORVELAN_FUZZ, otherwise one that replays files, run over fuzz/corpus/<name> by ctest.
function(torvelan_fuzz name)
  add_executable(fuzz_${name} ${name}.cpp)
  torvelan_internal_program(fuzz_${name})
  target_include_directories(fuzz_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  if(TORVELAN_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(fuzz_${name} PRIVATE ReplayMain.cpp)
    add_test(NAME fuzz.${name} COMMAND fuzz_${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
  endif()
endfunction()
