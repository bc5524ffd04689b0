# Layers of the source tree. Includes are written from the root ("meshrake/model/domain.hpp"), but
# no target has the root on its include path. Each layer has a folder of links to its headers, and a
# target sees the folders of the layers that it links, so an include of any other layer fails.

# Warnings and floating-point rules of all targets.
add_library(meshrake_settings INTERFACE)
target_compile_features(meshrake_settings INTERFACE cxx_std_20)
# A fused multiply-add would change the last digits of derived columns.
target_compile_options(meshrake_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -ffp-contract=off
  # Reports false positives for std::string in version 12.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${MESHRAKE_WERROR}>:-Werror>)
if(MESHRAKE_PORTABLE)
  target_compile_definitions(meshrake_settings INTERFACE MESHRAKE_PORTABLE)
endif()
if(MESHRAKE_SANITIZE)
  target_compile_options(meshrake_settings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(meshrake_settings INTERFACE -fsanitize=address,undefined)
endif()
if(MESHRAKE_FUZZ)
  set(fuzz_checks address,undefined,float-cast-overflow)
  target_compile_options(meshrake_settings INTERFACE
    -fsanitize=fuzzer-no-link,${fuzz_checks} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(meshrake_settings INTERFACE -fsanitize=${fuzz_checks})
endif()

# Links FOLDER/<path from the root> to each header, paths relative to the current source folder.
function(link_headers folder)
  file(REMOVE_RECURSE ${folder}) # a header that has moved must not be found in its old layer
  foreach(header IN LISTS ARGN)
    set(source ${CMAKE_CURRENT_SOURCE_DIR}/${header})
    file(RELATIVE_PATH path ${PROJECT_SOURCE_DIR} ${source})
    cmake_path(GET path PARENT_PATH parent)
    file(MAKE_DIRECTORY ${folder}/${parent})
    file(CREATE_LINK ${source} ${folder}/${path} SYMBOLIC)
  endforeach()
endfunction()

# Compiles each header on its own, so that none relies on what was included before it.
function(check_headers target)
  set(checks)
  foreach(header IN LISTS ARGN)
    set(source ${CMAKE_CURRENT_SOURCE_DIR}/${header})
    file(RELATIVE_PATH path ${PROJECT_SOURCE_DIR} ${source})
    set(check ${PROJECT_BINARY_DIR}/header_checks/${path}.cpp)
    file(CONFIGURE OUTPUT ${check} CONTENT "#include \"${path}\"\n")
    list(APPEND checks ${check})
  endforeach()
  add_library(${target}_headers OBJECT ${checks})
  target_link_libraries(${target}_headers PRIVATE ${target} meshrake_settings)
  target_include_directories(${target}_headers
    PRIVATE $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
endfunction()

# add_layer(TARGET ALIAS SOURCES ... HEADERS ... PRIVATE_HEADERS ... LINKS ...)
#
# Adds a library. Targets that link it can include its HEADERS, its own sources also
# PRIVATE_HEADERS. It is static, or follows BUILD_SHARED_LIBS with the option SHARED_IF_ASKED.
function(add_layer target alias)
  cmake_parse_arguments(PARSE_ARGV 2 layer "SHARED_IF_ASKED" ""
    "SOURCES;HEADERS;PRIVATE_HEADERS;LINKS")
  if(layer_SHARED_IF_ASKED)
    add_library(${target} ${layer_SOURCES})
  else()
    add_library(${target} STATIC ${layer_SOURCES})
  endif()
  add_library(${alias} ALIAS ${target})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PUBLIC ${layer_LINKS}
    PRIVATE $<BUILD_INTERFACE:meshrake_settings>)
  target_sources(${target} PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${layer_HEADERS})
  # The base directory of the file set would put the root on the include path.
  set(public ${PROJECT_BINARY_DIR}/include/${target})
  set(private ${PROJECT_BINARY_DIR}/include/${target}_private)
  link_headers(${public} ${layer_HEADERS})
  link_headers(${private} ${layer_PRIVATE_HEADERS})
  set_target_properties(${target} PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "$<BUILD_INTERFACE:${public}>"
    INCLUDE_DIRECTORIES "${public};${private}")
  if(MESHRAKE_CHECK_HEADERS)
    check_headers(${target} ${layer_HEADERS} ${layer_PRIVATE_HEADERS})
  endif()
endfunction()

# A program outside the layers (tests, benchmarks, tools), which may include any header.
function(add_program target)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE meshrake_settings)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()
