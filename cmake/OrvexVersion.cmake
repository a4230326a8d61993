# Which source a program was built from: <orvex_version.h> defines ORVEX_VERSION, "0.1.0 (3f2a91c)". "-dirty" follows the
# commit when files were changed since; the version stands alone when the source lay in no repository of its own.
set(generated ${PROJECT_BINARY_DIR}/generated)
set(writeVersion ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DVERSION=${PROJECT_VERSION}
                 -DHEADER=${generated}/orvex_version.h -P ${CMAKE_CURRENT_LIST_DIR}/write_version.cmake)
# Now, for programs that only read the sources, and at the beginning of each build.
execute_process(COMMAND ${writeVersion} COMMAND_ERROR_IS_FATAL ANY)
add_custom_target(orvex_version_header COMMAND ${writeVersion} BYPRODUCTS ${generated}/orvex_version.h VERBATIM)

# What links to this is compiled again for another commit: best a target with few files.
add_library(orvex_version INTERFACE)
target_include_directories(orvex_version INTERFACE ${generated})
add_dependencies(orvex_version orvex_version_header)
