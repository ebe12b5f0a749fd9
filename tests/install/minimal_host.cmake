# Installs the built tree, then configures, builds and runs the example against what was installed.

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE text ERROR_VARIABLE text)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${text}")
  endif()
  set(output "${text}" PARENT_SCOPE)
endfunction()

run("installing" ${CMAKE_COMMAND} --install ${BUILD_DIR} --config ${CONFIG} --prefix ${prefix})
run("configuring the example" ${CMAKE_COMMAND} -S ${EXAMPLE_DIR} -B ${WORK_DIR}/build
    -G ${GENERATOR} -DCMAKE_BUILD_TYPE=${CONFIG} -DCMAKE_CXX_COMPILER=${COMPILER}
    "-DCMAKE_CXX_FLAGS=${FLAGS}" -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON)
file(STRINGS ${WORK_DIR}/build/CMakeCache.txt found REGEX "^qce_DIR:")
if(NOT found MATCHES "${prefix}")
  message(FATAL_ERROR "the example found another package: ${found}")
endif()
run("building the example" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run("running the example" ${WORK_DIR}/build/minimal_host --check)
message(STATUS "${output}")
