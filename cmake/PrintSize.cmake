file(SIZE "${FILE}" size)
math(EXPR kib "(${size} + 1023) / 1024")
get_filename_component(name "${FILE}" NAME)
message(STATUS "nkw_pal stripped size: ${size} bytes (${kib} KiB) [${name}]")
