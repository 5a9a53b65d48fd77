# Run by cpack: folders that it made with the user's own mask would be installed so, closed to everybody else.
file(GLOB_RECURSE entries LIST_DIRECTORIES true "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*")
foreach(entry IN LISTS entries)
  if(IS_DIRECTORY "${entry}" AND NOT IS_SYMLINK "${entry}")
    file(CHMOD "${entry}" PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
