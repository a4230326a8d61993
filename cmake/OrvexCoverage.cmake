# Counting which lines and branches of src/ are run: linked to the service and to what includes its headers.
option(ORVEX_COVERAGE "count which lines and branches of src/ are run (g++)" OFF)

add_library(orvex_coverage INTERFACE)
if(ORVEX_COVERAGE)
  # Without optimisation a branch is one that stands in the source.
  target_compile_options(orvex_coverage INTERFACE -fprofile-arcs -ftest-coverage -O0)
  target_link_options(orvex_coverage INTERFACE --coverage)
endif()
