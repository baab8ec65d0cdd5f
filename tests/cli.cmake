# Tests of the kestodm command-line tool and of the version line the library
# prints as it is loaded. Included at the end of tests/CMakeLists.txt.
if(TARGET kestodm)
  add_test(NAME kestodm.Version COMMAND $<TARGET_FILE:kestodm> --version)
  set_tests_properties(kestodm.Version PROPERTIES
    PASS_REGULAR_EXPRESSION "^Kesto version [0-9]+\\.[0-9]+\\.[0-9]+ \\("
    ENVIRONMENT "TOVARIN_DUMP_VERSION_INFO=0"
    TIMEOUT 60)

  add_test(NAME kestodm.Help COMMAND $<TARGET_FILE:kestodm> --help)
  set_tests_properties(kestodm.Help PROPERTIES
    PASS_REGULAR_EXPRESSION "Usage: kestodm"
    TIMEOUT 60)

  add_test(NAME kestodm.UnknownCommandExitsWithTwo
    COMMAND ${CMAKE_COMMAND}
      -DCOMMAND=$<TARGET_FILE:kestodm>
      -DARGS=no-such-command
      -DEXPECTED_EXIT_CODE=2
      "-DEXPECTED_STDERR=unknown command"
      -P ${CMAKE_CURRENT_SOURCE_DIR}/cli_expect_exit.cmake)
  set_tests_properties(kestodm.UnknownCommandExitsWithTwo PROPERTIES TIMEOUT 60)

  add_test(NAME kestodm.VersionLineIsPrintedAtLoadWhenAsked COMMAND $<TARGET_FILE:kestodm> --version)
  set_tests_properties(kestodm.VersionLineIsPrintedAtLoadWhenAsked PROPERTIES
    ENVIRONMENT "TOVARIN_DUMP_VERSION_INFO=1"
    PASS_REGULAR_EXPRESSION "  KestoPrivateDM: Kesto version"
    TIMEOUT 60)

  add_test(NAME kestodm.VersionLineIsNotPrintedAtLoadWhenOff COMMAND $<TARGET_FILE:kestodm> --version)
  set_tests_properties(kestodm.VersionLineIsNotPrintedAtLoadWhenOff PROPERTIES
    ENVIRONMENT "TOVARIN_DUMP_VERSION_INFO=0"
    FAIL_REGULAR_EXPRESSION "KestoPrivateDM"
    TIMEOUT 60)
endif()
