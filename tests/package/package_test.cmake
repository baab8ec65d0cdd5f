# Proves the installed package works for an outside project: install into a
# temporary prefix, then configure, build and run tests/package/consumer
# against it. Not run in sanitizer builds, whose library needs the sanitizer
# runtime linked first into every program.
if(NOT KESTODM_SANITIZE)
  add_test(NAME PackageInstallsAndBuildsAnOutsideProject
    COMMAND ${CMAKE_COMMAND}
      -DBUILD_DIR=${PROJECT_BINARY_DIR}
      -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/package-test
      -DCONSUMER_DIR=${CMAKE_CURRENT_SOURCE_DIR}/package/consumer
      -DGENERATOR=${CMAKE_GENERATOR}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/package/run_package_test.cmake)
  set_tests_properties(PackageInstallsAndBuildsAnOutsideProject PROPERTIES TIMEOUT 600)
endif()
