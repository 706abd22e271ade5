# house_library(name HEADERS .. SOURCES .. DEPENDS ..): one room of the house.
#   HEADERS  what others may include, as <room/header.h>
#   SOURCES  the rest, which stays inside
#   DEPENDS  must be allowed by Layers.cmake; EXTERNAL names system libraries outside the table
# Each target gets an include root of its own that holds links to its public headers and nothing else,
# so a header of a target that is not linked does not exist for the compiler.
# house_test(name SOURCES .. DEPENDS ..): one test program, found by ctest case by case.
#   MAIN     widgets: a QApplication without a display; events: an event loop; network: the same, in a network of its own

set(HOUSE_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
set(HOUSE_DEFINITIONS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400
    $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

add_link_options(-fuse-ld=mold)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess) # lets ccache see through a precompiled header
endif()
if(KESTRUNE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -O1 -g1)
    add_link_options(-fsanitize=address,undefined)
elseif(KESTRUNE_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -O1 -g1)
    add_link_options(-fsanitize=address,undefined)
elseif(CMAKE_BUILD_TYPE STREQUAL "Debug")
    add_compile_options(-g1)
endif()

function(house_common target)
    target_compile_options(${target} PRIVATE ${HOUSE_WARNINGS})
    target_compile_definitions(${target} PRIVATE ${HOUSE_DEFINITIONS})
endfunction()

function(house_uses_qt out)
    set(${out} FALSE PARENT_SCOPE)
    foreach(dep IN LISTS ARGN)
        if(dep MATCHES "^Qt6::")
            set(${out} TRUE PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

function(house_library target)
    cmake_parse_arguments(PARSE_ARGV 1 A "" "" "HEADERS;SOURCES;DEPENDS;EXTERNAL")
    if(NOT target IN_LIST HOUSE_LAYERS)
        message(FATAL_ERROR "${target} has no row in Layers.cmake")
    endif()
    foreach(dep IN LISTS A_DEPENDS)
        if(NOT dep IN_LIST HOUSE_MAY_USE_${target})
            message(FATAL_ERROR "${target} may not depend on ${dep}: see Layers.cmake")
        endif()
    endforeach()

    file(RELATIVE_PATH room ${CMAKE_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
    string(REGEX REPLACE "^components/" "" room ${room})
    set(root ${CMAKE_BINARY_DIR}/house/${target})
    file(REMOVE_RECURSE ${root})
    foreach(header IN LISTS A_HEADERS)
        get_filename_component(folder ${root}/${room}/${header} DIRECTORY)
        file(MAKE_DIRECTORY ${folder})
        file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${root}/${room}/${header} SYMBOLIC)
    endforeach()

    if(A_SOURCES)
        add_library(${target} STATIC ${A_SOURCES} ${A_HEADERS})
        target_include_directories(${target} PUBLIC ${root})
        target_link_libraries(${target} PUBLIC ${A_DEPENDS} PRIVATE ${A_EXTERNAL})
        house_common(${target})
        house_uses_qt(qt ${A_DEPENDS})
        if(qt)
            set_target_properties(${target} PROPERTIES AUTOMOC ON)
            if(KESTRUNE_PCH)
                target_precompile_headers(${target} PRIVATE <QObject> <QString> <QVariant> <QHash> <vector> <string> <functional> <memory>)
            endif()
        endif()
    else()
        add_library(${target} INTERFACE)
        target_include_directories(${target} INTERFACE ${root})
        target_link_libraries(${target} INTERFACE ${A_DEPENDS} ${A_EXTERNAL})
    endif()
endfunction()

function(house_test target)
    cmake_parse_arguments(PARSE_ARGV 1 A "" "MAIN;TIMEOUT" "SOURCES;DEPENDS;LABELS")
    add_executable(${target} ${A_SOURCES})
    target_link_libraries(${target} PRIVATE ${A_DEPENDS} GTest::gtest)
    if(NOT A_MAIN)
        target_link_libraries(${target} PRIVATE GTest::gtest_main)
    else()
        target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/mains/${A_MAIN}.cpp)
    endif()
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    set_target_properties(${target} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    house_common(${target})
    target_compile_options(${target} PRIVATE -O0) # half the time of a build from nothing; what is tested stays optimised
    if(NOT A_TIMEOUT)
        set(A_TIMEOUT 120)
    endif()
    include(GoogleTest)
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES
        PROPERTIES TIMEOUT ${A_TIMEOUT} LABELS "${A_LABELS}")
endfunction()
