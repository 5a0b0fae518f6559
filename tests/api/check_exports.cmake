# Fails unless the shared library exports exactly the six entry points.
find_program(NM NAMES nm REQUIRED)
execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
  OUTPUT_VARIABLE listing RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "(^|\n)[^ \n]+" names "${listing}")
list(TRANSFORM names STRIP)
list(SORT names)
set(expected CreateLumaforge DestroyLumaforge GetLumaforgeArch GetLumaforgeVersion
  InitMediaDecoderEnvironment UninitMediaDecoderEnvironment)
if(NOT names STREQUAL expected)
  message(FATAL_ERROR "exported symbols are\n  ${names}\nexpected\n  ${expected}")
endif()
message(STATUS "exports: ${names}")
