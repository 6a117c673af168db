# Run by cpack before it packs: compresses what a Debian package holds compressed.
file(GLOB_RECURSE pages "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*.[1-9]"
     "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog")
foreach(page ${pages})
    execute_process(COMMAND gzip -9nf ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
