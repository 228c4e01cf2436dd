# Warnings as errors for everything this repository compiles.
add_library(nkw_pal_warnings INTERFACE)
target_compile_options(nkw_pal_warnings INTERFACE -Wall -Wextra -Wshadow -Werror)
