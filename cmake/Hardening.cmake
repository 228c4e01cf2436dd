# Hardening for every library and program this repository builds. The ELF
# side of it (canary and fortified calls, RELRO, immediate binding, stack not
# executable) is verified on the built files by tools/check-elf.sh.
add_compile_options(-fstack-protector-strong -Wformat -Werror=format-security)
# The checked C library calls need optimisation, and sanitizers already check
# more than they do; a toolchain's own level is replaced, not redefined.
if(NOT NKW_PAL_SANITIZE)
  add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
                      $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)

# The library needs nothing of the C++ runtime (no exceptions, RTTI or
# library containers): linking it with the C driver leaves libstdc++ out, so a
# stray operator new or guard variable fails the link instead of adding a
# dependency, and libgcc's helpers are linked in rather than libgcc_s.
function(nkw_pal_link_without_cxx_runtime target)
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE C)
  target_link_libraries(${target} PRIVATE m)
  target_link_options(${target} PRIVATE -static-libgcc)
endfunction()
