# SPDX-License-Identifier: GPL-3.0-or-later
# The plug-in module: the SDK's sources as a library, the room over them, and the bundle that hosts load.
find_path(VST3_SDK_DIR pluginterfaces/vst/ivstaudioprocessor.h
    PATHS /usr/share/juce/modules/juce_audio_processors/format_types/VST3_SDK NO_DEFAULT_PATH REQUIRED)

set(sdk ${VST3_SDK_DIR})
add_library(vst3_sdk STATIC
    ${sdk}/base/source/baseiids.cpp ${sdk}/base/source/fbuffer.cpp ${sdk}/base/source/fdebug.cpp
    ${sdk}/base/source/fobject.cpp ${sdk}/base/source/fstring.cpp ${sdk}/base/source/updatehandler.cpp
    ${sdk}/base/thread/source/flock.cpp
    ${sdk}/pluginterfaces/base/conststringtable.cpp ${sdk}/pluginterfaces/base/coreiids.cpp
    ${sdk}/pluginterfaces/base/funknown.cpp ${sdk}/pluginterfaces/base/ustring.cpp
    ${sdk}/public.sdk/source/common/pluginview.cpp ${sdk}/public.sdk/source/vst/vstbus.cpp
    ${sdk}/public.sdk/source/vst/vstcomponentbase.cpp ${sdk}/public.sdk/source/vst/vsteditcontroller.cpp
    ${sdk}/public.sdk/source/vst/vstinitiids.cpp ${sdk}/public.sdk/source/vst/vstparameters.cpp)
target_include_directories(vst3_sdk SYSTEM PUBLIC ${sdk})
target_compile_definitions(vst3_sdk PUBLIC RELEASE=1)
target_compile_options(vst3_sdk PRIVATE -w -fvisibility=hidden -fmacro-prefix-map=${sdk}/=)
target_compile_options(vst3_sdk INTERFACE -Wno-non-virtual-dtor) # its interfaces count references instead
target_link_libraries(vst3_sdk PRIVATE Threads::Threads)

thumpcraft_room(VST FOLDERS Audio/VST LINK PUBLIC room_Audio vst3_sdk)
# g++ 12 takes the deletion of a known object with three or more polymorphic bases for unreachable.
target_compile_options(room_VST PRIVATE -fno-devirtualize -Wno-ignored-optimization-argument) # clang has no such thing

# The declared identity, as the class info gives it too.
set(project_xml ${CMAKE_SOURCE_DIR}/Definitions/Project.xml)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${project_xml})
file(READ ${project_xml} declared)
foreach(name app-name app-vendor app-version app-vendor-url app-vendor-email plugin-uuid plugin-category-vst3)
    string(TOUPPER "VST_${name}" variable)
    string(REPLACE "-" "_" variable ${variable})
    if(NOT declared MATCHES "[ \n]${name}=\"([^\"]*)\"")
        message(FATAL_ERROR "${project_xml} declares no ${name}")
    endif()
    set(${variable} ${CMAKE_MATCH_1})
endforeach()
string(REPLACE "|" "\", \"" VST_CATEGORIES ${VST_PLUGIN_CATEGORY_VST3})
string(REGEX REPLACE "^(..)(..)(..)(..)-(..)(..)-(..)(..)-.*" "\\4\\3\\2\\1\\6\\5\\8\\7" id ${VST_PLUGIN_UUID})
string(REGEX REPLACE ".*-(....)-(............)$" "\\1\\2" tail ${VST_PLUGIN_UUID})
string(TOUPPER "${id}${tail}" VST_CLASS_ID)

set(bundle ${CMAKE_BINARY_DIR}/Thumpcraft.vst3)
configure_file(Source/Audio/VST/Module/moduleinfo.json.in ${bundle}/Contents/Resources/moduleinfo.json @ONLY)
set(exports ${CMAKE_SOURCE_DIR}/Source/Audio/VST/Module/exports.map)
add_library(thumpcraft_vst3 MODULE Source/Audio/VST/Module/ModuleMain.cpp)
target_compile_options(thumpcraft_vst3 PRIVATE -fno-exceptions)
target_link_libraries(thumpcraft_vst3 PRIVATE room_VST product_Resources)
target_link_options(thumpcraft_vst3 PRIVATE -Wl,--version-script=${exports} -Wl,-Bsymbolic -Wl,--gc-sections)
if(NOT THUMPCRAFT_SANITIZE)
    target_link_options(thumpcraft_vst3 PRIVATE -Wl,-z,defs)
endif()
set_target_properties(thumpcraft_vst3 PROPERTIES PREFIX "" OUTPUT_NAME Thumpcraft LINK_DEPENDS ${exports}
    LIBRARY_OUTPUT_DIRECTORY ${bundle}/Contents/x86_64-linux)

# Where hosts look first, unless a prefix says otherwise.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
    set(CMAKE_INSTALL_PREFIX "$ENV{HOME}/.vst3" CACHE PATH "Folder that gets the plug-in" FORCE)
endif()
install(DIRECTORY ${bundle} DESTINATION . USE_SOURCE_PERMISSIONS)
