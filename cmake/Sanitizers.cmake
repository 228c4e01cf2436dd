# NKW_PAL_SANITIZE applies to every target: address;undefined or thread.
if(NKW_PAL_SANITIZE)
  list(JOIN NKW_PAL_SANITIZE "," _nkw_sanitizers)
  add_compile_options(-fsanitize=${_nkw_sanitizers} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${_nkw_sanitizers})
endif()
