# Warnings are errors in our own code. Third-party headers come in as system
# includes so that their warnings do not stop the build.
function(kestodm_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
endfunction()
