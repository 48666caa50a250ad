# Helpers with which every folder declares its targets, so that warnings, sanitizers and the
# layering rules are the same everywhere.

find_package(Threads REQUIRED)

set(TREMOR_WARNINGS
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # Optimised builds of GCC 12 see overlaps in plain joins of std::string that are none
    # (https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105651, mended in 13).
    list(APPEND TREMOR_WARNINGS -Wno-restrict)
endif()

function(tremor_common_options target)
    target_compile_options(${target} PRIVATE ${TREMOR_WARNINGS})
    if(TREMOR_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
    endif()
    if(TREMOR_FUZZ)
        # Coverage for every library that a fuzz target links.
        target_compile_options(${target} PRIVATE
            -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
    endif()
endfunction()

include(TremorHeaders)

# Remembers the sources of a kind of library for the layering test.
function(tremor_record_sources property)
    foreach(source IN LISTS ARGN)
        cmake_path(ABSOLUTE_PATH source NORMALIZE)
        set_property(GLOBAL APPEND PROPERTY ${property} ${source})
    endforeach()
endfunction()

# A Qt-free library of logic. LINKS names what it may use: the arrows between folders.
function(tremor_logic_library target)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${target} STATIC ${ARG_SOURCES})
    tremor_record_sources(TREMOR_LOGIC_SOURCES ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${ARG_LINKS})
    tremor_common_options(${target})
endfunction()

# Qt's strict mode for everything that draws windows: no silent conversions of text, no
# connections without a receiver whose life ends them.
function(tremor_qt_options target)
    set_target_properties(${target} PROPERTIES AUTOMOC ON AUTORCC ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
        QT_NO_CONTEXTLESS_CONNECT QT_NO_FOREACH QT_NO_KEYWORDS
        QT_DISABLE_DEPRECATED_BEFORE=0x060400)
endfunction()

# Tests are compiled more often than they run; what they test keeps the optimiser's full care.
function(tremor_test_options target)
    tremor_common_options(${target})
    # Qt asks its users for position-independent code; said to all, so that they can share compiled
    # headers.
    target_compile_options(${target} PRIVATE -fPIC)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${target} PRIVATE -O0)
    endif()
endfunction()

# A library of windows on top of a logic library.
function(tremor_window_library target)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${ARG_LINKS} Qt6::Widgets)
    tremor_common_options(${target})
    tremor_qt_options(${target})
    tremor_compiled_headers(${target} tremor_qt_headers)
endfunction()

# One test program for a folder; every TEST becomes a CTest test of its own. LABELS and TIMEOUT (in
# seconds, 300 unless given) are CTest's. WINDOWS: draws on no screen; brings its own main().
# OPTIMISED: has work of its own, such as looking for things in pictures of the screen.
function(tremor_test target)
    cmake_parse_arguments(ARG "WINDOWS;OPTIMISED" "TIMEOUT" "SOURCES;LINKS;LABELS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    add_executable(${target} ${ARG_SOURCES})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${target} PRIVATE
        TREMOR_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
    target_link_libraries(${target} PRIVATE ${ARG_LINKS} GTest::gtest)
    if(ARG_OPTIMISED)
        tremor_common_options(${target})
    else()
        tremor_test_options(${target})
    endif()
    set(properties TIMEOUT ${ARG_TIMEOUT})
    if(ARG_LABELS)
        list(APPEND properties LABELS ${ARG_LABELS})
    endif()
    if(ARG_WINDOWS)
        target_link_libraries(${target} PRIVATE Qt6::Widgets)
        tremor_qt_options(${target})
        tremor_compiled_headers(${target} tremor_window_test_headers)
        list(APPEND properties ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
    else()
        target_link_libraries(${target} PRIVATE GTest::gtest_main)
        if(NOT ARG_OPTIMISED)
            tremor_compiled_headers(${target} tremor_test_headers)
        endif()
    endif()
    gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
