# The warnings that all of the project's own code is held to.
add_library(vfile_warnings INTERFACE)
if(MSVC)
  target_compile_options(vfile_warnings INTERFACE /W4 $<$<BOOL:${VFILE_WERROR}>:/WX>)
else()
  target_compile_options(vfile_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Woverloaded-virtual
    $<$<BOOL:${VFILE_WERROR}>:-Werror>)
endif()
