# Debian packages by CPack. script/package makes and checks them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /)
# Each package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL service host-tools dev)
if(pipewire_FOUND)
  list(APPEND CPACK_COMPONENTS_ALL pc)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_CONTACT "Orvex maintainers <maintainers@orvex.example.org>")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# orvex_package(COMPONENT SECTION SUMMARY TEXT)
function(orvex_package component section summary text)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME orvex-${component} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
endfunction()

orvex_package(service sound "optical audio delay calibration for televisions"
"Orvex plays a test sound on the television's speaker and on its optical
output, listens through the remote control's microphone, and corrects the
optical output's delay by the difference. One process does one run; a systemd
unit starts it on demand.

This build runs on the virtual television of orvex-host-tools.")
orvex_package(host-tools sound "virtual television and measuring tools for Orvex"
"The port of Orvex for ordinary Linux computers: a television as a directory
of files in a simulated living room, and commands to run a calibration on it,
to make and check the test sound, to replay recordings and to measure the
accuracy over thousands of rooms.")
orvex_package(dev devel "platform contract and conformance suite of Orvex"
"Everything needed to make and check a port of Orvex to another television:
the headers of the platform contract, its promises as tests, and a CMake
package.")
orvex_package(pc sound "keep two outputs of a living-room computer in step"
"A television by HDMI and a soundbar by S/PDIF or Bluetooth play the same
programme tens to hundreds of milliseconds apart. Orvex measures that with a
microphone and delays the output that is early. A user service plays on both
outputs by PipeWire; a command chooses the outputs and calibrates.")

set(exact "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_SERVICE_PACKAGE_DEPENDS "orvex-host-tools ${exact}")
set(CPACK_DEBIAN_HOST-TOOLS_PACKAGE_RECOMMENDS "orvex-service ${exact}")
set(CPACK_DEBIAN_DEV_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "cmake, libboost-dev, libgmock-dev, libgtest-dev, libefl-all-dev, libjsoncpp-dev, pkg-config")
# The service plays by libasound, whose plug-in for PipeWire is in pipewire-alsa.
set(CPACK_DEBIAN_PC_PACKAGE_DEPENDS "pipewire (>= 0.3.65), pipewire-alsa, wireplumber (>= 0.4.13)")
set(CPACK_DEBIAN_PC_PACKAGE_SUGGESTS libspa-0.2-bluetooth)
include(CPack)
