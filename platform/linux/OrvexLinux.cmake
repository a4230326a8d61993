# The pieces that ports on Linux are built from, as libraries of which a program links what it needs. None of them knows a
# television. Needs the target Orvex::contract.
find_package(Boost REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(ecore REQUIRED IMPORTED_TARGET ecore)
pkg_check_modules(ecore_file REQUIRED IMPORTED_TARGET ecore-file)
pkg_check_modules(jsoncpp REQUIRED IMPORTED_TARGET jsoncpp)

file(GLOB pieceSources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
# Each by itself where clang-tidy compiles several at a time: its parameters are the contract's.
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/event_log.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
set(fileSources json_text.cpp number_text.cpp printable_text.cpp small_files.cpp utc_time.cpp)
list(TRANSFORM fileSources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
list(REMOVE_ITEM pieceSources ${fileSources})

# Files and what stands in them, for programs without a main loop, too.
add_library(orvex_linux_files STATIC ${fileSources})
target_include_directories(orvex_linux_files PUBLIC ${CMAKE_CURRENT_LIST_DIR}/..)
target_link_libraries(orvex_linux_files PUBLIC PkgConfig::jsoncpp PRIVATE Boost::headers)

add_library(orvex_linux STATIC ${pieceSources})
target_link_libraries(orvex_linux PUBLIC Orvex::contract orvex_linux_files PkgConfig::ecore
                                  PRIVATE PkgConfig::ecore_file Threads::Threads)

foreach(library orvex_linux_files orvex_linux)
  target_compile_features(${library} PUBLIC cxx_std_17)
  set_target_properties(${library} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endforeach()
