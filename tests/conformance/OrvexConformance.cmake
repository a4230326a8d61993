# The platform contract's promises as tests. The sources are compiled once and linked to each port together with that
# port's driver. Needs the target Orvex::contract.
include(GoogleTest)
find_package(GTest REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(ecore REQUIRED IMPORTED_TARGET ecore)

file(GLOB suiteSources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/pieces_driver.cpp ${CMAKE_CURRENT_LIST_DIR}/port_driver.cpp
                                         ${CMAKE_CURRENT_LIST_DIR}/*_listener.cpp
                                         ${CMAKE_CURRENT_LIST_DIR}/*_test.cpp)
add_library(orvex_conformance OBJECT ${suiteSources})
target_compile_features(orvex_conformance PUBLIC cxx_std_17)
target_include_directories(orvex_conformance PUBLIC ${CMAKE_CURRENT_LIST_DIR}/..)
# Of Ecore the suite calls what the service calls: timers and pool workers. The port says which Ecore is linked.
target_include_directories(orvex_conformance SYSTEM PUBLIC ${ecore_INCLUDE_DIRS})
target_link_libraries(orvex_conformance PUBLIC Orvex::contract GTest::gmock GTest::gtest GTest::gtest_main
                                               Threads::Threads)

# orvex_add_conformance_tests(PROGRAM DRIVER driver.cpp... LIBRARIES port... [PROCESSES n] [LEAVE_OUT Test...]
# [PROPERTIES ...]): the suite on one port. ctest knows its tests as PROGRAM.Test and gives each a process of its own, for
# ports that have one television per process. Where beginning costs more than most tests do, n processes share the tests;
# ctest knows them as PROGRAM.0 and so on. PROPERTIES are ctest's.
function(orvex_add_conformance_tests program)
  cmake_parse_arguments(PARSE_ARGV 1 port "" "PROCESSES" "DRIVER;LIBRARIES;LEAVE_OUT;PROPERTIES")
  if(NOT port_DRIVER OR NOT port_LIBRARIES)
    message(FATAL_ERROR "orvex_add_conformance_tests(${program}): expected DRIVER sources and LIBRARIES of the port")
  endif()
  add_executable(${program} ${port_DRIVER})
  target_link_libraries(${program} PRIVATE orvex_conformance ${port_LIBRARIES})
  list(JOIN port_LEAVE_OUT ":" leftOut)
  if(NOT port_PROCESSES)
    gtest_discover_tests(${program} TEST_PREFIX "${program}." TEST_FILTER "-${leftOut}"
                         PROPERTIES TIMEOUT 120 ${port_PROPERTIES})
    return()
  endif()
  math(EXPR last "${port_PROCESSES} - 1")
  foreach(share RANGE ${last})
    add_test(NAME ${program}.${share} COMMAND ${program} --gtest_brief=1 --gtest_filter=-${leftOut})
    set_tests_properties(
      ${program}.${share} PROPERTIES ENVIRONMENT "GTEST_TOTAL_SHARDS=${port_PROCESSES};GTEST_SHARD_INDEX=${share}"
                                     TIMEOUT 300 ${port_PROPERTIES})
  endforeach()
endfunction()
