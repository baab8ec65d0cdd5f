# Stamps the version line's facts into one generated source at configure time:
# the date (day only, so that a warm compiler cache survives re-configures on
# the same day), the commit, and the build number and branch, which a build
# farm may give through KESTO_BUILD_NUMBER and KESTO_BUILD_BRANCH.
function(kestodm_build_info output)
  string(TIMESTAMP KESTODM_BUILD_DATE "%Y-%m-%d" UTC)

  set(KESTODM_COMMIT_HASH "unknown")
  set(KESTODM_BRANCH "unknown")
  find_package(Git QUIET)
  if(GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --short=12 HEAD
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
      OUTPUT_VARIABLE hash OUTPUT_STRIP_TRAILING_WHITESPACE
      RESULT_VARIABLE hash_result ERROR_QUIET)
    if(hash_result EQUAL 0 AND hash)
      set(KESTODM_COMMIT_HASH "${hash}")
    endif()
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --abbrev-ref HEAD
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
      OUTPUT_VARIABLE branch OUTPUT_STRIP_TRAILING_WHITESPACE
      RESULT_VARIABLE branch_result ERROR_QUIET)
    if(branch_result EQUAL 0 AND branch)
      set(KESTODM_BRANCH "${branch}")
    endif()
  endif()

  if(DEFINED ENV{KESTO_BUILD_BRANCH} AND NOT "$ENV{KESTO_BUILD_BRANCH}" STREQUAL "")
    set(KESTODM_BRANCH "$ENV{KESTO_BUILD_BRANCH}")
  endif()
  set(KESTODM_BUILD_NUMBER "0")
  if(DEFINED ENV{KESTO_BUILD_NUMBER} AND NOT "$ENV{KESTO_BUILD_NUMBER}" STREQUAL "")
    set(KESTODM_BUILD_NUMBER "$ENV{KESTO_BUILD_NUMBER}")
  endif()

  configure_file(${PROJECT_SOURCE_DIR}/src/foundation/DmBuildInfo.cpp.in ${output} @ONLY)
endfunction()
