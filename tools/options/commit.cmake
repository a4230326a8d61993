# cmake -DSOURCE=FOLDER -DHEADER=FILE -P commit.cmake: writes the commit of the source to HEADER, unless it stands there.
cmake_minimum_required(VERSION 3.25)
set(ENV{GIT_OPTIONAL_LOCKS} 0)
set(git git -C ${SOURCE})
set(commit "")
# A copy of the source inside another repository, such as that of a package, is not that repository's commit.
execute_process(COMMAND ${git} rev-parse --show-toplevel OUTPUT_VARIABLE top ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
file(REAL_PATH ${SOURCE} source)
if(top STREQUAL source)
  execute_process(COMMAND ${git} describe --always --dirty --exclude=* OUTPUT_VARIABLE commit ERROR_QUIET
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define ORVEX_COMMIT \"@commit@\"\n" @ONLY)
