# orvex_startable(PROGRAM RESULT): how another program starts PROGRAM, a target. Where it needs an emulator, which the
# kernel does not know of, that is a script.
function(orvex_startable program result)
  if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
    set(${result} $<TARGET_FILE:${program}> PARENT_SCOPE)
    return()
  endif()
  set(scripts ${PROJECT_BINARY_DIR}/emulated)
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
  # orvex-tv starts the service likewise.
  file(GENERATE OUTPUT ${scripts}/${program}
       CONTENT "#!/bin/sh\nexport ORVEX_SERVICE=\"\${ORVEX_SERVICE:-${scripts}/orvex-service}\"\nexec ${emulator} $<TARGET_FILE:${program}> \"$@\"\n"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  set(${result} ${scripts}/${program} PARENT_SCOPE)
endfunction()

# orvex_starts_itself(PROGRAM): the tests of PROGRAM, a target, start it anew by the name that it was started with. Before
# the tests are added.
function(orvex_starts_itself program)
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    orvex_startable(${program} script)
    set_target_properties(${program} PROPERTIES CROSSCOMPILING_EMULATOR "${CMAKE_CROSSCOMPILING_EMULATOR};-0;${script}")
  endif()
endfunction()
