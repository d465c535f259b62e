# SPDX-License-Identifier: GPL-3.0-or-later
# Flags every target shares, and the helper that makes a library of one room's folders.

add_library(thumpcraft_flags INTERFACE)
target_compile_options(thumpcraft_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wdouble-promotion -Wnon-virtual-dtor -Werror
    -march=x86-64-v2 -mcx16          # the baseline; wider kernels are chosen at start-up
    -ffp-contract=off                # the last digit must not depend on the compiler's mood
    -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=
    -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/Source/=) # the last that fits counts
target_include_directories(thumpcraft_flags INTERFACE ${CMAKE_SOURCE_DIR}/Source)
if(THUMPCRAFT_SANITIZE)
    target_compile_options(thumpcraft_flags INTERFACE -fsanitize=${THUMPCRAFT_SANITIZE} -fno-omit-frame-pointer
                                                      -fno-sanitize-recover=all)
    target_link_options(thumpcraft_flags INTERFACE -fsanitize=${THUMPCRAFT_SANITIZE})
    # The pool allocator hands through to the system's, so that the sanitizers see every object.
    target_compile_definitions(thumpcraft_flags INTERFACE QRB_SYSTEM_ALLOCATOR=1)
endif()

# Kernels that are loops of an .inl file compiled once a vector width are written for g++ alone. Where clang compiles the
# rest, g++ still makes their objects, which no sanitizer watches then. Replaces them by those objects in a list of sources.
function(thumpcraft_gnu_kernels list)
    find_program(THUMPCRAFT_GNU_COMPILER g++ REQUIRED)
    set(kept "")
    foreach(source ${${list}})
        file(STRINGS ${source} loops REGEX "include \".*\\.inl\"")
        if(loops)
            cmake_path(RELATIVE_PATH source BASE_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE name)
            set(object ${CMAKE_BINARY_DIR}/gnu/${name}.o)
            cmake_path(GET object PARENT_PATH folder)
            file(MAKE_DIRECTORY ${folder})
            add_custom_command(OUTPUT ${object} DEPENDS ${source} DEPFILE ${object}.d
                COMMAND ${CMAKE_CXX_COMPILER_LAUNCHER} ${THUMPCRAFT_GNU_COMPILER} -std=c++20 -O2 -fPIC -fno-exceptions
                        -march=x86-64-v2 -mcx16 -ffp-contract=off -DQRB_SYSTEM_ALLOCATOR=1 -I ${CMAKE_SOURCE_DIR}/Source
                        -MD -MT ${object} -MF ${object}.d -c ${source} -o ${object})
            set(source ${object})
        endif()
        list(APPEND kept ${source})
    endforeach()
    set(${list} ${kept} PARENT_SCOPE)
endfunction()

# thumpcraft_room(NAME FOLDERS folder... LINK ...): static library room_NAME of all sources in Source/folder...
function(thumpcraft_room name)
    cmake_parse_arguments(ROOM "" "" "FOLDERS;LINK" ${ARGN})
    set(sources "")
    foreach(folder ${ROOM_FOLDERS})
        file(GLOB found CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/Source/${folder}/*.cpp)
        list(APPEND sources ${found})
    endforeach()
    if(NOT sources)
        file(WRITE ${CMAKE_BINARY_DIR}/empty_${name}.cpp "")
        set(sources ${CMAKE_BINARY_DIR}/empty_${name}.cpp)
    endif()
    if(THUMPCRAFT_FUZZ)
        thumpcraft_gnu_kernels(sources)
    endif()
    add_library(room_${name} STATIC ${sources})
    target_link_libraries(room_${name} PUBLIC thumpcraft_flags ${ROOM_LINK})
    target_compile_options(room_${name} PRIVATE -fno-exceptions)
endfunction()
