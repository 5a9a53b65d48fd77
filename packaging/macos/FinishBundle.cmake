# Finishes OrvSMCHelper.app after it was linked: embeds the companion, if there is one, and signs the whole. Every build
# runs this; it does nothing while neither the bundle nor anything that goes into it has changed, whatever the files'
# times say: a companion may be put in place with the times of its own build.
#
#   cmake -D bundle=APP -D record=FILE -D companion=APP -D entitlements=FILE -D identity=NAME -D codesign=PROGRAM
#     -P FinishBundle.cmake
#
# record is where the last outcome is kept. Without companion none is embedded, without codesign nothing is signed.
cmake_minimum_required(VERSION 3.25)

function(describe folder result)
  file(GLOB_RECURSE entries LIST_DIRECTORIES false "${folder}/*")
  set(description "")
  foreach(entry IN LISTS entries)
    if(IS_SYMLINK "${entry}")
      file(READ_SYMLINK "${entry}" content)
    else()
      file(SHA256 "${entry}" content)
    endif()
    string(APPEND description "${entry} ${content}\n")
  endforeach()
  set(${result} "${description}" PARENT_SCOPE)
endfunction()

# All that decides what the bundle is, and what it became.
function(describe_outcome result)
  set(description "${identity}\n")
  foreach(folder IN ITEMS "${bundle}" "${companion}")
    if(folder)
      describe("${folder}" files)
      string(APPEND description "${files}")
    endif()
  endforeach()
  file(SHA256 "${entitlements}" permissions)
  set(${result} "${description}${permissions}\n" PARENT_SCOPE)
endfunction()

function(embed_companion)
  file(REMOVE_RECURSE "${bundle}/Contents/Resources")
  if(companion)
    file(MAKE_DIRECTORY "${bundle}/Contents/Resources")
    execute_process(COMMAND cp -R "${companion}" "${bundle}/Contents/Resources" COMMAND_ERROR_IS_FATAL ANY)
  endif()
endfunction()

function(sign)
  if(NOT codesign)
    return()
  endif()
  set(options --force --sign "${identity}" --options runtime --entitlements "${entitlements}")
  if(NOT identity STREQUAL "-")
    list(APPEND options --timestamp) # which notarisation asks for
  endif()
  execute_process(COMMAND "${codesign}" ${options} "${bundle}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

string(REGEX REPLACE "/+$" "" companion "${companion}") # cp would copy what is inside
if(companion AND NOT IS_DIRECTORY "${companion}")
  message(FATAL_ERROR "ORV_COMPANION_APP is no application bundle: ${companion}")
endif()
set(before "")
if(EXISTS "${record}")
  file(READ "${record}" before)
endif()
describe_outcome(now)
if(NOT now STREQUAL before)
  file(REMOVE "${record}")
  embed_companion()
  sign()
  describe_outcome(now)
  file(WRITE "${record}" "${now}")
endif()
