# Installs the library into an empty folder and builds the example with it like another program.
cmake_minimum_required(VERSION 3.20)

function(must)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
must(${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}/installed --component library)
must(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${FOLDER}/build
  -DCMAKE_PREFIX_PATH=${FOLDER}/installed -DCMAKE_CXX_COMPILER=${COMPILER}
  -DCMAKE_CXX_FLAGS=${FLAGS} -DEXAMPLE=${EXAMPLE})
must(${CMAKE_COMMAND} --build ${FOLDER}/build)
execute_process(COMMAND ${FOLDER}/build/locate_in_mesh ERROR_VARIABLE out)
if(NOT out MATCHES "^usage: locate_in_mesh PREFIX INDEX")
  message(FATAL_ERROR "The example wrote: ${out}")
endif()
