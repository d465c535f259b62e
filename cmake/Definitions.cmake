# SPDX-License-Identifier: GPL-3.0-or-later
# Definition documents and data files, compiled and linked in.

# thumpcraft_resources(TARGET NAME function DOCUMENTS file.xml... [LISTS file.txt...] [FOLDERS folder...]
#                      [PRESETS file.xml|resource[|source]...] [DEFINE NAME=VALUE...])
# Static library TARGET that holds the compiled documents under their file names, the files that their "appdata" objects
# ask for, and those of the list files (lines "source|resource"). The header "<function>.h" gives qrb::<function>().
# PRESETS are texts of presets, banks and lists, built for the first document in this order: a list that names the states
# of a parameter stands in front of what uses these names. Those with a source are for the "appdata" of the documents,
# which asks for them by it.
# The languages CXX and ASM have to be enabled where this is called.
function(thumpcraft_resources target)
    cmake_parse_arguments(R "" "NAME" "DOCUMENTS;LISTS;FOLDERS;PRESETS;DEFINE" ${ARGN})
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
    file(MAKE_DIRECTORY ${folder})
    set(defines "")
    foreach(define ${R_DEFINE})
        list(APPEND defines -D ${define})
    endforeach()
    set(arguments ${defines})
    set(compiled "")
    set(built "")
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
    file(MAKE_DIRECTORY ${folder}/appdata)
    list(APPEND arguments --folder ${folder}/appdata)
    list(GET R_DOCUMENTS 0 document)
    cmake_path(GET document FILENAME document)
    set(blocks "")
    foreach(preset ${R_PRESETS}) # one that is still to come counts as an empty list
        string(REPLACE "|" ";" parts ${preset})
        list(GET parts 1 name)
        list(APPEND blocks --block ${name})
    endforeach()
    foreach(preset ${R_PRESETS})
        string(REPLACE "|" ";" parts ${preset})
        list(GET parts 0 text)
        list(GET parts 1 name)
        cmake_path(ABSOLUTE_PATH text BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        list(LENGTH parts count)
        if(count GREATER 2)
            list(GET parts 2 source)
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder}/appdata NORMALIZE OUTPUT_VARIABLE made)
        else()
            set(made ${folder}/${name})
            list(APPEND arguments --file "${made}|${name}")
        endif()
        add_custom_command(OUTPUT ${made}
            COMMAND qrb-preset-bare build --document ${folder}/${document} ${blocks} ${text} ${made}
            DEPENDS ${text} ${folder}/${document} ${built} qrb-preset-bare
            COMMENT "Building presets ${name}" VERBATIM)
        list(APPEND blocks --block "${name}=${made}") # of one name the last word counts
        list(APPEND built ${made})
    endforeach()
    list(APPEND compiled ${built})
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
