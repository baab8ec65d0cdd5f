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

if(TARGET kestodm)
  set(cli_data ${CMAKE_CURRENT_SOURCE_DIR}/data/cli)

  add_test(NAME kestodm.CheckAcceptsAGoodFile COMMAND $<TARGET_FILE:kestodm> check ${cli_data}/good.json)
  set_tests_properties(kestodm.CheckAcceptsAGoodFile PROPERTIES
    PASS_REGULAR_EXPRESSION "good.json: ok"
    TIMEOUT 60)

  add_test(NAME kestodm.CheckReportsWhereAFileFailsToParse
    COMMAND ${CMAKE_COMMAND}
      -DCOMMAND=$<TARGET_FILE:kestodm>
      "-DARGS=check;${cli_data}/good.json;${cli_data}/syntax_error.json"
      -DEXPECTED_EXIT_CODE=1
      "-DEXPECTED_STDERR=Failed to parse [^ ]*syntax_error.json at position 3:20: Missing a colon after a name of object member."
      -P ${CMAKE_CURRENT_SOURCE_DIR}/cli_expect_exit.cmake)
  set_tests_properties(kestodm.CheckReportsWhereAFileFailsToParse PROPERTIES TIMEOUT 60)

  add_test(NAME kestodm.CheckFailsForAMissingFile
    COMMAND ${CMAKE_COMMAND}
      -DCOMMAND=$<TARGET_FILE:kestodm>
      "-DARGS=check;${cli_data}/no_such_file.json"
      -DEXPECTED_EXIT_CODE=1
      "-DEXPECTED_STDERR=Non existing Json file."
      -P ${CMAKE_CURRENT_SOURCE_DIR}/cli_expect_exit.cmake)
  set_tests_properties(kestodm.CheckFailsForAMissingFile PROPERTIES TIMEOUT 60)

  add_test(NAME kestodm.CheckNeedsAFile
    COMMAND ${CMAKE_COMMAND}
      -DCOMMAND=$<TARGET_FILE:kestodm>
      -DARGS=check
      -DEXPECTED_EXIT_CODE=2
      "-DEXPECTED_STDERR=needs at least one file"
      -P ${CMAKE_CURRENT_SOURCE_DIR}/cli_expect_exit.cmake)
  set_tests_properties(kestodm.CheckNeedsAFile PROPERTIES TIMEOUT 60)
endif()
