cmake_minimum_required(VERSION 3.23)

# Fails when a logic file includes a Qt header, when a subsystem includes a neighbour that it must
# not know, or when a class that belongs behind a port is used elsewhere.
#
# Run: cmake -DSOURCE_DIR=<repo>/src -DLOGIC_SOURCES=<file with one path a line> -P this file

set(failures "")

# Folders that a folder may include besides itself. src/core's program files (panel, Main) compose
# everything and are free.
set(allowed_core "")
set(allowed_database core)
foreach(subsystem ingest map workspaces alerts views manage setup)
    set(allowed_${subsystem} core database)
endforeach()

macro(fail text)
    string(APPEND failures "${text}\n")
endmacro()

# 1. No Qt in logic: sources by CMake's lists, and the header beside each.
file(STRINGS ${LOGIC_SOURCES} logic_sources)
list(LENGTH logic_sources logic_count)
if(logic_count LESS 15)
    fail("only ${logic_count} logic sources were handed in: the check would see nothing")
endif()
foreach(source IN LISTS logic_sources)
    string(REGEX REPLACE "\\.cpp$" ".h" header "${source}")
    foreach(file IN ITEMS "${source}" "${header}")
        if(EXISTS "${file}")
            file(STRINGS "${file}" qt_includes REGEX "^#include <Q")
            if(qt_includes)
                fail("${file} is logic and includes Qt: ${qt_includes}")
            endif()
        endif()
    endforeach()
endforeach()

# 2. Arrows go down only.
file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*.h ${SOURCE_DIR}/*.cpp)
foreach(file IN LISTS files)
    if(file MATCHES "^core/(panel(_menu|_widgets|_steps)?|Main)[^/]*\\.(h|cpp)$"
       AND NOT file MATCHES "panel_layout")
        continue()
    endif()
    string(REGEX MATCH "^[^/]+" folder "${file}")
    file(STRINGS "${SOURCE_DIR}/${file}" includes REGEX "^#include \"")
    foreach(include IN LISTS includes)
        string(REGEX REPLACE "^#include \"([^/\"]+)/.*" "\\1" target "${include}")
        if(NOT target STREQUAL folder AND NOT target IN_LIST allowed_${folder})
            fail("src/${file} must not know src/${target}: ${include}")
        endif()
    endforeach()
endforeach()

# 3. Boxes and event loops stand behind their ports.
foreach(rule IN ITEMS "QMessageBox:core/qt_prompts" "QFileDialog:core/qt_prompts"
                      "QInputDialog:core/qt_prompts" "QEventLoop:core/qt_clock"
                      "processEvents:core/qt_clock")
    string(REPLACE ":" ";" rule "${rule}")
    list(GET rule 0 word)
    list(GET rule 1 home)
    foreach(file IN LISTS files)
        if(NOT file MATCHES "^${home}\\.(h|cpp)$")
            file(STRINGS "${SOURCE_DIR}/${file}" uses REGEX "${word}")
            if(uses)
                fail("src/${file} uses ${word}, which belongs to src/${home}")
            endif()
        endif()
    endforeach()
endforeach()

if(failures)
    message(FATAL_ERROR "${failures}")
endif()
