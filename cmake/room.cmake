# SPDX-License-Identifier: MIT
# One function declares a room: its flags, include path, links and tests.
#
#   room(NAME ig_math KIND OBJECT LINKS ig_base [PRIVATE lib...] [TEST_LINKS lib...])
#
# KIND is OBJECT (a room of a larger library), STATIC, SHARED, INTERFACE (headers only) or PROGRAM.
# A room is a folder with include/ (what others see), src/ and test/; all sources in src/ belong to
# it. It sees the include paths of the rooms in LINKS, and of those that they link: nothing else, so
# that an include that points up the house doesn't compile. PRIVATE libraries are not passed on.
# The build refuses links that no include asks for, and includes that no link allows: check_rooms().
# Every test/ folder becomes one GoogleTest program NAME_test. An OBJECT room has no library of its
# own to link with, so its tests link the library named by TEST_LIBRARY (default: ig).

set(VC_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    -Wcast-align -Wnull-dereference -Wformat=2 -Werror)

# The elementary functions that ig/math defines for the whole process, so that their bits are the
# same on every machine. A compiler that knows them would work out calls with constants by others.
set(VC_ELEMENTARY sin cos sincos tan asin acos atan atan2 hypot exp exp2 log log2 log10 pow)
list(TRANSFORM VC_ELEMENTARY PREPEND -fno-builtin- OUTPUT_VARIABLE VC_NO_BUILTIN)
list(TRANSFORM VC_NO_BUILTIN APPEND f OUTPUT_VARIABLE VC_NO_BUILTIN_FLOAT)

add_library(vc_flags INTERFACE)
target_compile_features(vc_flags INTERFACE cxx_std_20)
target_compile_options(vc_flags INTERFACE ${VC_WARNINGS} -ffp-contract=off
    ${VC_NO_BUILTIN} ${VC_NO_BUILTIN_FLOAT})
# How long a test may take before it counts as hung, VC_TEST_SECONDS: machines may be slow and busy.
if(VC_SANITIZE)
    target_compile_options(vc_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer -O1
        -Wno-maybe-uninitialized) # the compiler takes the checks themselves for reading what is not set
    target_link_options(vc_flags INTERFACE -fsanitize=address,undefined)
    set(VC_TEST_SECONDS 900)
else()
    set(VC_TEST_SECONDS 600)
endif()

function(room)
    cmake_parse_arguments(ROOM "" "NAME;KIND;TEST_LIBRARY" "LINKS;PRIVATE;TEST_LINKS" ${ARGN})
    if(ROOM_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "room ${ROOM_NAME}: unknown arguments ${ROOM_UNPARSED_ARGUMENTS}")
    endif()
    set(dir ${CMAKE_CURRENT_SOURCE_DIR})
    file(GLOB sources CONFIGURE_DEPENDS ${dir}/src/*.cpp)
    file(GLOB_RECURSE files CONFIGURE_DEPENDS ${dir}/include/*.h ${dir}/src/*.h ${dir}/src/*.cpp)
    string(JOIN " " room ${ROOM_NAME} ${dir} ${ROOM_LINKS} ${ROOM_PRIVATE})
    set_property(GLOBAL APPEND PROPERTY VC_ROOMS ${room})
    set_property(GLOBAL APPEND PROPERTY VC_ROOM_FILES ${files})

    if(ROOM_KIND STREQUAL "INTERFACE")
        add_library(${ROOM_NAME} INTERFACE)
        target_include_directories(${ROOM_NAME} INTERFACE ${dir}/include)
        target_link_libraries(${ROOM_NAME} INTERFACE ${ROOM_LINKS})
    else()
        if(ROOM_KIND STREQUAL "PROGRAM")
            add_executable(${ROOM_NAME} ${sources})
            set_target_properties(${ROOM_NAME} PROPERTIES
                RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
        else()
            add_library(${ROOM_NAME} ${ROOM_KIND} ${sources})
        endif()
        if(IS_DIRECTORY ${dir}/include)
            target_include_directories(${ROOM_NAME} PUBLIC ${dir}/include)
        endif()
        target_include_directories(${ROOM_NAME} PRIVATE ${dir}/src)
        target_link_libraries(${ROOM_NAME} PUBLIC ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE} vc_flags)
        target_compile_options(${ROOM_NAME} PRIVATE
            -Wconversion -Wno-sign-conversion) # narrowing is written out
        set_target_properties(${ROOM_NAME} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    endif()

    if(VC_TESTS)
        room_tests()
    endif()
endfunction()

# The test program of the room being declared; reads the variables of room().
macro(room_tests)
    file(GLOB tests CONFIGURE_DEPENDS ${dir}/test/*.cpp)
    if(tests)
        add_executable(${ROOM_NAME}_test ${tests})
        set_target_properties(${ROOM_NAME}_test PROPERTIES
            RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
        target_include_directories(${ROOM_NAME}_test PRIVATE ${dir}/src) # private headers too
        if(ROOM_KIND STREQUAL "OBJECT")
            if(NOT ROOM_TEST_LIBRARY)
                set(ROOM_TEST_LIBRARY ig)
            endif()
            target_include_directories(${ROOM_NAME}_test PRIVATE
                $<TARGET_PROPERTY:${ROOM_NAME},INTERFACE_INCLUDE_DIRECTORIES>)
            target_link_libraries(${ROOM_NAME}_test PRIVATE $<LINK_ONLY:${ROOM_TEST_LIBRARY}>)
        elseif(ROOM_KIND STREQUAL "PROGRAM")
            # A program's test drives the program from outside; its path is compiled in.
            target_compile_definitions(${ROOM_NAME}_test PRIVATE
                PROGRAM_PATH="$<TARGET_FILE:${ROOM_NAME}>")
            target_link_libraries(${ROOM_NAME}_test PRIVATE ${ROOM_LINKS})
            add_dependencies(${ROOM_NAME}_test ${ROOM_NAME})
        else()
            target_link_libraries(${ROOM_NAME}_test PRIVATE ${ROOM_NAME})
        endif()
        target_link_libraries(${ROOM_NAME}_test PRIVATE ${ROOM_TEST_LINKS} vc_flags GTest::gtest_main)
        gtest_discover_tests(${ROOM_NAME}_test DISCOVERY_MODE PRE_TEST
            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} PROPERTIES TIMEOUT ${VC_TEST_SECONDS})
    endif()
endmacro()

# Part of every build: holds the links of all rooms declared so far against their includes.
function(check_rooms)
    get_property(rooms GLOBAL PROPERTY VC_ROOMS)
    get_property(files GLOBAL PROPERTY VC_ROOM_FILES)
    string(JOIN "\n" rooms ${rooms})
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/rooms.txt CONTENT "@rooms@\n" @ONLY)
    set(script ${PROJECT_SOURCE_DIR}/scripts/check_rooms)
    add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/rooms.checked
        COMMAND ${script} ${PROJECT_BINARY_DIR}/rooms.txt
        COMMAND ${CMAKE_COMMAND} -E touch ${PROJECT_BINARY_DIR}/rooms.checked
        DEPENDS ${PROJECT_BINARY_DIR}/rooms.txt ${script} ${files}
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMENT "Holding links against includes" VERBATIM)
    add_custom_target(rooms_checked ALL DEPENDS ${PROJECT_BINARY_DIR}/rooms.checked)
endfunction()
