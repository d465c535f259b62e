# SPDX-License-Identifier: GPL-3.0-or-later
# Definition documents and data files, compiled and linked in.

# thumpcraft_resources(TARGET NAME function DOCUMENTS file.xml... [LISTS file.txt...] [FOLDERS folder...]
#                      [DEFINE NAME=VALUE...])
# Static library TARGET that holds the compiled documents under their file names, the files that their "appdata" objects
# ask for, and those of the list files (lines "source|resource"). The header "<function>.h" gives qrb::<function>().
# The languages CXX and ASM have to be enabled where this is called.
function(thumpcraft_resources target)
    cmake_parse_arguments(R "" "NAME" "DOCUMENTS;LISTS;FOLDERS;DEFINE" ${ARGN})
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
    file(MAKE_DIRECTORY ${folder})
    set(defines "")
    foreach(define ${R_DEFINE})
        list(APPEND defines -D ${define})
    endforeach()
    set(arguments ${defines})
    set(compiled "")
    foreach(document ${R_DOCUMENTS})
        cmake_path(ABSOLUTE_PATH document BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE source)
        cmake_path(GET source FILENAME name)
        add_custom_command(OUTPUT ${folder}/${name}
            COMMAND qrb-doc compile ${defines} --depfile ${folder}/${name}.d ${source} ${folder}/${name}
            DEPENDS ${source} qrb-doc DEPFILE ${folder}/${name}.d
            COMMENT "Compiling document ${name}" VERBATIM)
        list(APPEND compiled ${folder}/${name})
        list(APPEND arguments --file "${folder}/${name}|${name}" --document ${source})
    endforeach()
    foreach(list ${R_LISTS})
        cmake_path(ABSOLUTE_PATH list BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        list(APPEND arguments --list ${list})
    endforeach()
    foreach(search ${R_FOLDERS})
        cmake_path(ABSOLUTE_PATH search BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        list(APPEND arguments --folder ${search})
    endforeach()
    add_custom_command(OUTPUT ${folder}/${R_NAME}.S ${folder}/${R_NAME}.h
        COMMAND qrb-pack ${arguments} --name ${R_NAME} --header ${folder}/${R_NAME}.h --depfile ${folder}/${R_NAME}.d
                ${folder}/${R_NAME}.S
        DEPENDS ${compiled} qrb-pack DEPFILE ${folder}/${R_NAME}.d
        COMMENT "Packing resources of ${target}" VERBATIM)
    add_library(${target} STATIC ${folder}/${R_NAME}.S ${folder}/${R_NAME}.h)
    target_include_directories(${target} INTERFACE ${folder} ${CMAKE_SOURCE_DIR}/Source)
endfunction()
