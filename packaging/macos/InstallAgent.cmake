# Installs the launch agent below CMAKE_INSTALL_PREFIX. The system takes the path of its program as it stands there, so
# that is absolute whatever the prefix is, and has the form that a property list wants.
#
#   cmake -D CMAKE_INSTALL_PREFIX=FOLDER -D identifier=NAME -D agent=FILE -P InstallAgent.cmake
#
# agent is where the finished list is made; its name is the installed one's.
cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/PropertyListText.cmake")

get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
property_list_text(program "${prefix}/Applications/OrvSMCHelper.app/Contents/MacOS/OrvSMCHelper")
configure_file("${CMAKE_CURRENT_LIST_DIR}/LaunchAgent.plist.in" "${agent}" @ONLY)
file(INSTALL "${agent}" DESTINATION "${prefix}/Library/LaunchAgents")
