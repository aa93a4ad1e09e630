# The warnings that all of the project's own code is held to.
add_library(vfile_warnings INTERFACE)
target_compile_options(vfile_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Woverloaded-virtual)
if(VFILE_WERROR)
  target_compile_options(vfile_warnings INTERFACE -Werror)
endif()
