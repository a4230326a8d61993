# find_package(Orvex): the platform contract as Orvex::contract. include(${Orvex_LINUX}) then gives orvex_linux, the pieces
# that ports on Linux are built from, and include(${Orvex_CONFORMANCE}) orvex_add_conformance_tests(), the contract's
# promises as tests of a port.
include(CMakeFindDependencyMacro)
find_dependency(PkgConfig)
pkg_check_modules(Orvex_jsoncpp REQUIRED QUIET IMPORTED_TARGET jsoncpp)

get_filename_component(Orvex_ROOT ${CMAKE_CURRENT_LIST_DIR}/../../.. ABSOLUTE)
set(Orvex_LINUX ${Orvex_ROOT}/share/orvex/linux/OrvexLinux.cmake)
set(Orvex_CONFORMANCE ${Orvex_ROOT}/share/orvex/conformance/OrvexConformance.cmake)
if(NOT TARGET Orvex::contract)
  add_library(Orvex::contract INTERFACE IMPORTED)
  target_include_directories(Orvex::contract INTERFACE ${Orvex_ROOT}/include)
  target_link_libraries(Orvex::contract INTERFACE PkgConfig::Orvex_jsoncpp)
endif()
