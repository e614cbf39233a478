# The one interface target that carries language level, warnings as errors, hardening and the strict Qt definitions.
add_library(orrinvale_options INTERFACE)
target_compile_features(orrinvale_options INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1")

# Who builds all of it once compiles eight sources of a library or test program as one, which is half of the work; who builds
# it again and again is better off without. The sources of one such group share the names that are in no header: tests/tools/
# check_groups.py finds those given twice before a group does.
option(ORRINVALE_GROUPS "Compile the sources of libraries and test programs in groups" OFF)

target_include_directories(orrinvale_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(orrinvale_options INTERFACE
  _FILE_OFFSET_BITS=64
  $<$<NOT:$<CONFIG:Debug>>:_GLIBCXX_ASSERTIONS>
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_CONTEXTLESS_CONNECT QT_NO_FOREACH QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
# In a group a local name may be a file-wide one of a neighbour. What it hides in its own source is told by the other kind of build.
set(shadow -Wshadow)
if(ORRINVALE_GROUPS)
  set(shadow $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>)
endif()
target_compile_options(orrinvale_options INTERFACE
  -Wall -Wextra -Wpedantic ${shadow} -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Wextra-semi -Wundef -Werror
  -fstack-protector-strong -fno-plt)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(orrinvale_options INTERFACE -Wduplicated-cond -Wlogical-op -Wuseless-cast)
else()  # what the kernel's and the bus's headers hold for C is pedantry here
  target_compile_options(orrinvale_options INTERFACE -Wno-c99-extensions -Wno-zero-length-array)
endif()
target_link_options(orrinvale_options INTERFACE -Wl,-z,relro,-z,now -Wl,-z,noexecstack -Wl,--as-needed)

# A program that runs while building runs plain: what a sanitizer says of the toolkit in it would end the build. It links no library
# of ours and has the property ORRINVALE_PLAIN.
if(ORRINVALE_SANITIZE)
  set(sanitized $<NOT:$<BOOL:$<TARGET_PROPERTY:ORRINVALE_PLAIN>>>)
  target_compile_options(orrinvale_options INTERFACE
    "$<${sanitized}:-fsanitize=${ORRINVALE_SANITIZE};-fno-omit-frame-pointer;-fno-sanitize-recover=all>"
    # GCC 12 sees its own instrumentation as uses of what was never set.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(orrinvale_options INTERFACE "$<${sanitized}:-fsanitize=${ORRINVALE_SANITIZE}>")
  if(ORRINVALE_SANITIZE STREQUAL "thread")
    set(clone ${PROJECT_SOURCE_DIR}/tests/support/cloneUnderTsan.cpp)
    target_sources(orrinvale_options INTERFACE "$<${sanitized}:${clone}>")
    set_property(SOURCE ${clone} PROPERTY SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
elseif(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  target_compile_definitions(orrinvale_options INTERFACE _FORTIFY_SOURCE=2)
endif()

# Turns on moc (and rcc) for a target. A header that is added later does not make moc run again by itself, as its list of
# dependencies was written before; the file that CMake writes its own list into does.
function(orrinvale_use_moc target)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTORCC ON)
  set_property(TARGET ${target} APPEND PROPERTY AUTOGEN_TARGET_DEPENDS
    ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${target}_autogen.dir/AutogenInfo.json)
endfunction()

# precompile(TARGET SET...): the headers of the sets are read once for a whole target; they are most of what a source of ours
# costs to compile. Sources include what they use all the same: static analysis reads each without them.
set(orrinvale_headers_std <algorithm> <array> <atomic> <cerrno> <chrono> <cstdint> <functional> <map> <memory> <mutex>
  <optional> <set> <span> <string> <string_view> <thread> <unordered_map> <utility> <vector> <fmt/format.h> <tl/expected.hpp>)
set(orrinvale_headers_qt <QAbstractItemModel> <QAbstractItemView> <QApplication> <QCoreApplication> <QIcon> <QKeyEvent> <QLabel>
  <QLocale> <QObject> <QPainter> <QPointer> <QString> <QStringList> <QTimer> <QTreeView> <QVBoxLayout> <QWidget>)
set(orrinvale_headers_core <QCoreApplication> <QObject> <QString> <QTimer>)
set(orrinvale_headers_test <gtest/gtest.h> <gmock/gmock.h>)
function(orrinvale_precompile target)
  foreach(name IN LISTS ARGN)
    target_precompile_headers(${target} PRIVATE ${orrinvale_headers_${name}})
  endforeach()
endfunction()

function(orrinvale_group target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${ORRINVALE_GROUPS} UNITY_BUILD_BATCH_SIZE 8)
endfunction()
