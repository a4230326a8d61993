# cmake -DSOURCE=FOLDER -DVERSION=VERSION -DHEADER=FILE -P write_version.cmake: writes the version and the commit of the
# source to HEADER, unless they stand there.
cmake_minimum_required(VERSION 3.25)
set(ENV{GIT_OPTIONAL_LOCKS} 0)
set(git git -C ${SOURCE})
# A copy of the source inside another repository, such as that of a package, is not that repository's commit.
execute_process(COMMAND ${git} rev-parse --show-toplevel OUTPUT_VARIABLE top ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
file(REAL_PATH ${SOURCE} source)
if(top STREQUAL source)
  execute_process(COMMAND ${git} describe --always --dirty --exclude=* OUTPUT_VARIABLE commit ERROR_QUIET
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(commit)
    string(APPEND VERSION " (${commit})")
  endif()
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define ORVEX_VERSION \"@VERSION@\"\n" @ONLY)
