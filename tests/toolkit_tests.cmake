add_executable(toolkit_tests
  ElementSearch_test.cpp
  FixedResolutionGrid_test.cpp
  KDTree_test.cpp
  hash_table_test.cpp)
target_link_libraries(toolkit_tests PRIVATE tvncommon GTest::gtest_main)
gtest_discover_tests(toolkit_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)

target_sources(meshrake_tests PRIVATE locate_in_mesh_test.cpp)
target_compile_definitions(meshrake_tests PRIVATE
  LOCATE_IN_MESH_PROGRAM="$<TARGET_FILE:locate_in_mesh>")
add_dependencies(meshrake_tests locate_in_mesh)

set(installed_flags "${CMAKE_CXX_FLAGS}")
if(MESHRAKE_SANITIZE)
  string(APPEND installed_flags " -fsanitize=address,undefined")
endif()
add_test(NAME installed_library COMMAND ${CMAKE_COMMAND}
  -DBUILD=${PROJECT_BINARY_DIR} -DFOLDER=${CMAKE_CURRENT_BINARY_DIR}/installed_library
  -DCOMPILER=${CMAKE_CXX_COMPILER} -DFLAGS=${installed_flags}
  -DEXAMPLE=${PROJECT_SOURCE_DIR}/examples/locate_in_mesh.cpp
  -P ${CMAKE_CURRENT_SOURCE_DIR}/installed_library/check.cmake)

target_sources(meshrake_tests PRIVATE bc_locations_test.cpp paraview_test.cpp)
target_compile_definitions(meshrake_tests PRIVATE
  MESHRAKE_VTK_PROGRAM="$<TARGET_FILE:meshrake_vtk>")
add_dependencies(meshrake_tests meshrake_vtk)

find_program(PYTHON python3)
if(PYTHON)
  add_test(NAME vtk_reader COMMAND ${PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/read_vtk.py
    $<TARGET_FILE:meshrake_vtk> $<TARGET_FILE:make_problem>)
  set_tests_properties(vtk_reader PROPERTIES SKIP_RETURN_CODE 77)
endif()
