# Third-party libraries, all of them Debian packages. Their headers are SYSTEM includes: our warnings are about our code.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
if(BUILD_TESTING)
  find_package(GTest REQUIRED)
endif()
find_package(Boost 1.74 REQUIRED)
find_package(Eigen3 3.4 REQUIRED NO_MODULE)

foreach(pair ecore:ecore ecore_file:ecore-file alsa:alsa jsoncpp:jsoncpp samplerate:samplerate sndfile:sndfile
             cli11:CLI11 fmt:fmt png:libpng)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 name)
  list(GET pair 1 module)
  pkg_check_modules(${name} REQUIRED IMPORTED_TARGET ${module})
endforeach()

# For the port to PipeWire, which is left out where there is none: on a television, for one.
pkg_check_modules(pipewire IMPORTED_TARGET libpipewire-0.3>=0.3.65)
if(NOT pipewire_FOUND)
  message(STATUS "libpipewire-0.3 is not there: without the port to PipeWire and orvex-delay")
endif()
