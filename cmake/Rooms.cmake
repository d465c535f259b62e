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
    add_library(room_${name} STATIC ${sources})
    target_link_libraries(room_${name} PUBLIC thumpcraft_flags ${ROOM_LINK})
    target_compile_options(room_${name} PRIVATE -fno-exceptions)
endfunction()
