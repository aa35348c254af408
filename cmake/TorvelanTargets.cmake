# The building blocks of the tree: a layer, a test program, a benchmark and a fuzz target are one line each.

find_package(fmt REQUIRED)
find_package(FastFloat REQUIRED)
find_library(SLEEF_LIBRARY sleef REQUIRED)
find_package(BISON 3.8 REQUIRED)

add_library(torvelan_flags INTERFACE)
target_compile_options(torvelan_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fno-math-errno -fno-trapping-math -ffp-contract=off
  -fstack-protector-strong)
if(TORVELAN_SANITIZE)
  add_compile_options(-fsanitize=${TORVELAN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TORVELAN_SANITIZE})
  add_compile_definitions(TORVELAN_SANITIZED)
else()
  target_compile_options(torvelan_flags INTERFACE $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
  target_link_options(torvelan_flags INTERFACE -Wl,-z,relro,-z,now)
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
      "-Wno-conversion;-Wno-shadow;-Wno-sign-conversion;-Wno-useless-cast;-Wno-free-nonheap-object")
    list(APPEND sources ${output})
  endforeach()
  if(NOT sources)
    return()
  endif()
  add_library(torvelan_${name} OBJECT ${sources})
  target_include_directories(torvelan_${name} PUBLIC
    ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/Source ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(torvelan_${name} PRIVATE torvelan_flags PUBLIC ${arg_LIBS} FastFloat::fast_float)
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

# torvelan_test(<name> <folder> [LAYER layer] [LIBS ...]): the .cpp files of a folder as one GoogleTest program, linked
# to the objects of the layers up to LAYER (all by default), so that tests see internals.
function(torvelan_test name folder)
  cmake_parse_arguments(arg "" "LAYER" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE
    ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/Source ${CMAKE_SOURCE_DIR}/tests
    ${CMAKE_BINARY_DIR}/generated)
  target_compile_definitions(${name} PRIVATE TORVELAN_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  if(arg_LAYER)
    torvelan_link_layers(${name} ${arg_LAYER})
  else()
    torvelan_link_layers(${name})
  endif()
  target_link_libraries(${name} PRIVATE torvelan_flags GTest::gtest GTest::gmock GTest::gtest_main ${arg_LIBS})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 DISCOVERY_MODE PRE_TEST)
endfunction()
