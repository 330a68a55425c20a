# One call for each folder below src: the folder is a static library whose dependencies
# are declared here, so that the build itself shows the floors of the house.
# Static libraries, because the tests of a folder link that folder and what lies
# beneath it, nothing else; the products are made of the same object files.

# krx_folder(NAME [DIRECTORY dir] [PATTERNS glob...] [DEPENDS name...] [LIBRARIES lib...])
function(krx_folder name)
  cmake_parse_arguments(ARG "" "DIRECTORY" "PATTERNS;DEPENDS;LIBRARIES" ${ARGN})
  if(NOT ARG_DIRECTORY)
    set(ARG_DIRECTORY ${name})
  endif()
  if(NOT ARG_PATTERNS)
    set(ARG_PATTERNS "*.cpp")
  endif()
  list(TRANSFORM ARG_PATTERNS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/${ARG_DIRECTORY}/")
  file(GLOB sources CONFIGURE_DEPENDS ${ARG_PATTERNS})
  add_library(krx_${name} STATIC ${sources})
  set_target_properties(krx_${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(krx_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(krx_${name} PRIVATE krx_build_flags PUBLIC ${ARG_LIBRARIES})
  foreach(dependency IN LISTS ARG_DEPENDS)
    target_link_libraries(krx_${name} PUBLIC krx_${dependency})
  endforeach()
endfunction()

# krx_test(NAME LIBRARIES lib...): the tests beside one folder, one executable. The test code itself
# is built without optimisation: most of a build's time would go there, and nothing is gained.
function(krx_test name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/src
                                                  ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(test_${name} PRIVATE krx_build_flags ${ARG_LIBRARIES}
                                             GTest::gmock GTest::gtest_main)
  target_compile_options(test_${name} PRIVATE -O0 -U_FORTIFY_SOURCE)
  get_property(first GLOBAL PROPERTY KRX_FIRST_TEST)
  if(first)
    target_precompile_headers(test_${name} REUSE_FROM ${first})
  else()
    set_property(GLOBAL PROPERTY KRX_FIRST_TEST test_${name})
    target_precompile_headers(test_${name} PRIVATE <gmock/gmock.h> <gtest/gtest.h> <filesystem>
                                                   <fstream> <sstream> <string> <vector>)
  endif()
  gtest_discover_tests(test_${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST
                       PROPERTIES TIMEOUT 120)
endfunction()
