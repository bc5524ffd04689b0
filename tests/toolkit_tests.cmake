add_executable(toolkit_tests
  ElementSearch_test.cpp
  FixedResolutionGrid_test.cpp
  KDTree_test.cpp)
target_link_libraries(toolkit_tests PRIVATE tvncommon GTest::gtest_main)
gtest_discover_tests(toolkit_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
