# Gives a macOS SDK in whatever layout the form that clang expects, in ORV_CROSS_FOLDER and without copying it. Sets
# orv_sysroot, and orv_link_flags for what the SDK lacks.

set(orv_link_flags "")
if(EXISTS "${ORV_MACOS_SDK}/System/Library/Frameworks")
  set(orv_sysroot "${ORV_MACOS_SDK}")
  return()
endif()
if(NOT EXISTS "${ORV_MACOS_SDK}/Frameworks" OR NOT EXISTS "${ORV_MACOS_SDK}/include")
  message(FATAL_ERROR "ORV_MACOS_SDK names no macOS SDK: \"${ORV_MACOS_SDK}\"")
endif()

set(orv_sysroot "${ORV_CROSS_FOLDER}/sysroot")
set(frameworks "${orv_sysroot}/System/Library/Frameworks")
file(MAKE_DIRECTORY "${orv_sysroot}/usr/lib" "${frameworks}")
file(CREATE_LINK "${ORV_MACOS_SDK}/include" "${orv_sysroot}/usr/include" SYMBOLIC)
file(GLOB libraries "${ORV_MACOS_SDK}/lib/*.tbd")
foreach(library IN LISTS libraries)
  get_filename_component(name "${library}" NAME)
  file(CREATE_LINK "${library}" "${orv_sysroot}/usr/lib/${name}" SYMBOLIC)
endforeach()
file(GLOB bundles "${ORV_MACOS_SDK}/Frameworks/*.framework")
foreach(bundle IN LISTS bundles)
  get_filename_component(name "${bundle}" NAME)
  file(MAKE_DIRECTORY "${frameworks}/${name}/Versions")
  file(GLOB entries "${bundle}/*")
  list(FILTER entries EXCLUDE REGEX "/Versions$")
  foreach(entry IN LISTS entries)
    get_filename_component(entry_name "${entry}" NAME)
    file(CREATE_LINK "${entry}" "${frameworks}/${name}/${entry_name}" SYMBOLIC)
  endforeach()
  # Libraries refer to each other by version; such an SDK has only the current one.
  foreach(version IN ITEMS A B C Current)
    file(CREATE_LINK "${bundle}/Versions/Current" "${frameworks}/${name}/Versions/${version}" SYMBOLIC)
  endforeach()
endforeach()

# A library without its symbols: the linker then leaves them to be found at run time.
function(orv_stand_in file install_name symbols)
  if(EXISTS "${file}")
    return()
  endif()
  file(WRITE "${file}" "--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos, arm64-macos ]
install-name: '${install_name}'
exports:
  - targets: [ x86_64-macos, arm64-macos ]
    ${symbols}
...
")
endfunction()

orv_stand_in("${orv_sysroot}/usr/lib/libSystem.tbd" /usr/lib/libSystem.B.dylib "symbols: [ dyld_stub_binder ]")
orv_stand_in("${orv_sysroot}/usr/lib/libc++.tbd" /usr/lib/libc++.1.dylib "symbols: [ ]")
set(orv_link_flags "-Wl,-undefined,dynamic_lookup")

if(NOT EXISTS "${frameworks}/IOBluetooth.framework")
  file(WRITE "${frameworks}/IOBluetooth.framework/Headers/IOBluetooth.h" "#import <Foundation/Foundation.h>
@interface IOBluetoothUserNotification : NSObject
@end
@interface IOBluetoothDevice : NSObject
+ (IOBluetoothUserNotification *)registerForConnectNotifications:(id)observer selector:(SEL)selector;
@end
")
endif()
orv_stand_in("${frameworks}/IOBluetooth.framework/IOBluetooth.tbd"
  /System/Library/Frameworks/IOBluetooth.framework/Versions/A/IOBluetooth "objc-classes: [ IOBluetoothDevice ]")
