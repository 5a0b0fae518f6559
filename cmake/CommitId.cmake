# The seven-hex-digit source revision logged by every manager Init, read once
# when the build is configured; builds outside a git checkout use 0000000.
set(LUMAFORGE_COMMIT_ID "0000000")
find_package(Git QUIET)
if(GIT_FOUND)
  execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --short=7 HEAD
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    OUTPUT_VARIABLE revision OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
  if(result EQUAL 0 AND revision MATCHES "^[0-9a-f]+$")
    string(SUBSTRING ${revision} 0 7 LUMAFORGE_COMMIT_ID)
  endif()
endif()
set(LUMAFORGE_COMMIT_ID_SOURCE ${PROJECT_BINARY_DIR}/commit_id.cc)
configure_file(${PROJECT_SOURCE_DIR}/framework/commit_id.cc.in ${LUMAFORGE_COMMIT_ID_SOURCE} @ONLY)
