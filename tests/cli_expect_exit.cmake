# Runs a command and checks its exit code and standard error; for the CLI tests.
#   cmake -DCOMMAND=<program> [-DARGS=<a;b;...>] -DEXPECTED_EXIT_CODE=<n>
#         [-DEXPECTED_STDERR=<regex>] -P cli_expect_exit.cmake
if(NOT DEFINED COMMAND OR NOT DEFINED EXPECTED_EXIT_CODE)
  message(FATAL_ERROR "cli_expect_exit.cmake needs COMMAND and EXPECTED_EXIT_CODE")
endif()

execute_process(COMMAND ${COMMAND} ${ARGS}
  RESULT_VARIABLE exit_code
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err)

if(NOT exit_code STREQUAL "${EXPECTED_EXIT_CODE}")
  message(FATAL_ERROR "'${COMMAND} ${ARGS}' exited with '${exit_code}', expected ${EXPECTED_EXIT_CODE}\n"
    "stdout:\n${out}\nstderr:\n${err}")
endif()
if(DEFINED EXPECTED_STDERR AND NOT err MATCHES "${EXPECTED_STDERR}")
  message(FATAL_ERROR "standard error does not match '${EXPECTED_STDERR}':\n${err}")
endif()
