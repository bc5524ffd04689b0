# Each prints its ratios beside their limits and ends with status 1 where one is missed.
foreach(name grid hash_table kdtree)
  add_executable(${name}_bench ${name}_bench.cpp)
  target_link_libraries(${name}_bench PRIVATE tvncommon)
endforeach()
