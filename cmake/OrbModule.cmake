# The folders of the program as targets, and the rule that arrows between them run one way.

add_library(orb_build_options INTERFACE)
target_compile_options(orb_build_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
target_compile_definitions(orb_build_options INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_USE_QSTRINGBUILDER QT_DEPRECATED_WARNINGS)
if(ORBIX_SANITIZERS)
    target_compile_options(orb_build_options INTERFACE
        -fsanitize=${ORBIX_SANITIZERS} -fno-sanitize-recover=all)
    target_link_options(orb_build_options INTERFACE -fsanitize=${ORBIX_SANITIZERS})
endif()

# Height of each folder; a folder may link only folders below its own height. Folders of the same
# height do not see each other.
set(ORB_RANK_orb_filemapping 0)
set(ORB_RANK_orb_gfl 0)
set(ORB_RANK_orb_gl 0)
set(ORB_RANK_orb_simulate 0)
set(ORB_RANK_orb_ovr 1)
set(ORB_RANK_orb_leap 1)
set(ORB_RANK_orb_shell 1)
set(ORB_RANK_orb_media 2)
set(ORB_RANK_orb_orbimage 2)
set(ORB_RANK_orb_view 3)
set(ORB_RANK_orb_render 4)
set(ORB_RANK_orb_hmd 5)
set(ORB_RANK_orb_input 5)
set(ORB_RANK_orb_net 5)
set(ORB_RANK_orb_app 6)

# orb_add_library(orb_NAME [SOURCES …] [PUBLIC …] [PRIVATE …] [INCLUDES …])
# A static library of the current folder, or headers alone where it has no sources. Its headers are
# reachable only for what links it; INCLUDES names sub-folders whose headers belong to the public root too.
function(orb_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE;INCLUDES" ${ARGN})
    if(NOT DEFINED ORB_RANK_${name})
        message(FATAL_ERROR "${name} has no rank in cmake/OrbModule.cmake")
    endif()
    foreach(lower IN LISTS ARG_PUBLIC ARG_PRIVATE)
        if(lower MATCHES "^orb_" AND NOT ORB_RANK_${lower} LESS ORB_RANK_${name})
            message(FATAL_ERROR "${name} (rank ${ORB_RANK_${name}}) may not link ${lower} "
                                "(rank ${ORB_RANK_${lower}}): arrows run downwards only")
        endif()
    endforeach()
    if(NOT ARG_SOURCES)
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
        target_link_libraries(${name} INTERFACE ${ARG_PUBLIC})
        return()
    endif()
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    foreach(folder IN LISTS ARG_INCLUDES)
        target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
    endforeach()
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} orb_build_options)
endfunction()

# orb_add_tool(target OUTPUT program-name SOURCES … LINK …): a small program beside the player.
function(orb_add_tool target)
    cmake_parse_arguments(ARG "" "OUTPUT" "SOURCES;LINK" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${ARG_OUTPUT})
    target_link_libraries(${target} PRIVATE ${ARG_LINK} orb_build_options)
endfunction()

# orb_add_test(name LABEL unit|scene|gl|e2e SOURCES … [LINK …] [ENVIRONMENT …] [INCLUDES …] [VARIANT …])
# A Qt Test program. Each run has a configuration and data folder of its own, so that no test reads or
# writes a user's settings. VARIANTS adds further runs of the same program: "suffix|VAR=value".
function(orb_add_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINK;ENVIRONMENT;INCLUDES;VARIANTS;DEFINITIONS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_link_libraries(${name} PRIVATE ${ARG_LINK} orb_test_support Qt5::Test orb_build_options)
    target_include_directories(${name} PRIVATE ${ARG_INCLUDES})
    target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS}
        TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data")
    if(ARG_LABEL STREQUAL "unit")
        add_dependencies(unit-tests ${name})
    endif()
    foreach(variant IN ITEMS "|" LISTS ARG_VARIANTS)
        string(REGEX MATCH "^([^|]*)\\|(.*)$" matched "${variant}")
        set(test ${name}${CMAKE_MATCH_1})
        set(environment ${ARG_ENVIRONMENT} ${CMAKE_MATCH_2})
        set(home ${CMAKE_BINARY_DIR}/test-homes/${test})
        file(MAKE_DIRECTORY ${home}/config ${home}/data ${home}/cache)
        add_test(NAME ${test} COMMAND ${name})
        set_tests_properties(${test} PROPERTIES
            LABELS ${ARG_LABEL}
            ENVIRONMENT "HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;XDG_CACHE_HOME=${home}/cache;LC_ALL=C.UTF-8;ALSA_CONFIG_PATH=${PROJECT_SOURCE_DIR}/tests/data/silent-alsa.conf;QT_LOGGING_RULES=;${environment}")
    endforeach()
endfunction()
