# Installs the build into a folder of its own, moves it (an installed tree must not know where it was made), builds
# the programs of examples/embedding against it and compares what they print.
# Given: BUILD, SOURCE, CXX, METHOD (cmake or pkg-config), WORK.

set(examples ${SOURCE}/examples/embedding)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "status ${status} of ${ARGN}\n${output}")
  endif()
endfunction()

function(expect expected)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT status EQUAL 0 OR NOT output STREQUAL expected)
    message(FATAL_ERROR "${ARGN}\nstatus ${status}, printed\n${output}${errors}\nexpected\n${expected}")
  endif()
endfunction()

function(build_with_cmake prefix programs)
  run(${CMAKE_COMMAND} -S ${examples} -B ${programs} -G Ninja -DCMAKE_BUILD_TYPE=Debug
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix})
  run(${CMAKE_COMMAND} --build ${programs})
endfunction()

function(build_with_pkg_config prefix programs)
  file(GLOB pc_files ${prefix}/lib*/pkgconfig/torvelan.pc ${prefix}/lib/*/pkgconfig/torvelan.pc)
  get_filename_component(pc_dir "${pc_files}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${pc_dir})
  execute_process(COMMAND pkg-config --cflags --libs torvelan OUTPUT_VARIABLE flags
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  get_filename_component(lib_dir ${pc_dir} DIRECTORY)
  file(MAKE_DIRECTORY ${programs})
  foreach(name host function messages vectors)
    run(${CXX} -std=c++20 ${examples}/${name}.cpp -o ${programs}/${name} ${flags} -Wl,-rpath,${lib_dir})
  endforeach()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/made)
file(RENAME ${WORK}/made ${WORK}/installed)
if(METHOD STREQUAL "cmake")
  build_with_cmake(${WORK}/installed ${WORK}/programs)
else()
  build_with_pkg_config(${WORK}/installed ${WORK}/programs)
endif()

expect("14\n" ${WORK}/programs/host)
expect("1\n" ${WORK}/programs/function)
expect("error: Arguments out of range for operator '/'
error: Cannot find vector of name 'x'
error: Bad syntax in expression '2 +'
sqrt(16) is 4
" ${WORK}/programs/messages)
expect(":out/:in: 1 division(s), unit '', over frequency
  181 points, the first is 1.46469
" ${WORK}/programs/vectors ${SOURCE}/examples/amplifier/ac.raw "out/in")
