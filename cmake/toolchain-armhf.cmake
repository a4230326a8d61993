# Builds for Debian's armhf, a 32-bit ARM with hardware floating point, on another machine, and runs what was built with
# qemu-user. ORVEX_SYSROOT is a folder with the unpacked armhf packages; script/cross-armhf makes one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)
# Notes about calls between code of old and new compilers, of which there are none.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVEX_SYSROOT)
if(NOT IS_DIRECTORY "${ORVEX_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}")
  message(FATAL_ERROR "ORVEX_SYSROOT is \"${ORVEX_SYSROOT}\", expected a folder with Debian's armhf packages")
endif()
set(CMAKE_SYSROOT ${ORVEX_SYSROOT})
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${ORVEX_SYSROOT})

# Programs are this machine's, all else is the target's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${ORVEX_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${ORVEX_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/pkgconfig:${ORVEX_SYSROOT}/usr/share/pkgconfig)
