# Run by cpack for the source archive: what git has of the last commit, and nothing else.
get_filename_component(sources ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
set(archive ${CMAKE_INSTALL_PREFIX}/sources.tar)
file(MAKE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
execute_process(COMMAND git -C ${sources} archive --format=tar --output=${archive} HEAD
                COMMAND_ERROR_IS_FATAL ANY)
file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${CMAKE_INSTALL_PREFIX})
file(REMOVE ${archive})
