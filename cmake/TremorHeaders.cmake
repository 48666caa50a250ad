# The headers that a kind of target takes in everywhere, compiled once for all targets of the kind
# and not once for each: Qt's are 300 MB and 15 s of work. A target can take them only with the
# options that they were compiled with, so there is a set for each combination of options.

set(TREMOR_HEADERS_OF_tremor_qt_headers <QtWidgets/QtWidgets>)
set(TREMOR_HEADERS_OF_tremor_test_headers
    <fmt/format.h> <gtest/gtest.h>
    <algorithm> <chrono> <filesystem> <fstream> <functional> <string> <vector>)
set(TREMOR_HEADERS_OF_tremor_window_test_headers <gtest/gtest.h> <QtWidgets/QtWidgets>)

# The target that compiles a set, made when the first one asks for it.
function(tremor_headers_target headers)
    set(source ${CMAKE_BINARY_DIR}/${headers}.cpp)
    if(headers STREQUAL "tremor_window_test_headers")
        file(CONFIGURE OUTPUT ${source} CONTENT "int main() {}\n")
        add_executable(${headers} EXCLUDE_FROM_ALL ${source})
        target_link_libraries(${headers} PRIVATE GTest::gtest Qt6::Widgets)
        tremor_test_options(${headers})
        tremor_qt_options(${headers})
    elseif(headers STREQUAL "tremor_test_headers")
        file(CONFIGURE OUTPUT ${source} CONTENT "")
        add_library(${headers} STATIC EXCLUDE_FROM_ALL ${source})
        target_link_libraries(${headers} PRIVATE GTest::gtest fmt::fmt)
        tremor_test_options(${headers})
    else()
        file(CONFIGURE OUTPUT ${source} CONTENT "")
        add_library(${headers} STATIC EXCLUDE_FROM_ALL ${source})
        target_link_libraries(${headers} PRIVATE Qt6::Widgets)
        tremor_common_options(${headers})
        tremor_qt_options(${headers})
    endif()
    target_precompile_headers(${headers} PRIVATE ${TREMOR_HEADERS_OF_${headers}})
endfunction()

function(tremor_compiled_headers target headers)
    if(NOT TARGET ${headers})
        tremor_headers_target(${headers})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${headers})
endfunction()
