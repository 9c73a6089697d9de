# What most files include from outside is parsed once for src/ and once for tests/. No file may lean on it:
# tools/check_sources.py parses every file, and every header alone, with nothing but what it includes itself.
option(TARNOVEL_PRECOMPILED "Parse the headers of Qt and of the standard library once" ON)

set(TARNOVEL_COMMON_HEADERS
  <algorithm> <array> <atomic> <chrono> <cmath> <functional> <map> <memory> <mutex> <numbers> <optional> <set>
  <stdexcept> <stop_token> <string> <utility> <vector> <nlohmann/json.hpp>
  <QAbstractButton> <QAccessible> <QApplication> <QBasicTimer> <QBoxLayout> <QByteArray> <QCache> <QClipboard> <QColor>
  <QDateTime> <QDir> <QException> <QFile> <QFileInfo> <QFont> <QFontMetrics> <QFuture> <QGuiApplication> <QHash>
  <QImage> <QKeyEvent> <QLabel> <QLineEdit> <QList> <QLoggingCategory> <QMimeData> <QMouseEvent> <QObject> <QPainter>
  <QPainterPath> <QPixmap> <QPointF> <QPointer> <QPushButton> <QRectF> <QSet> <QSize> <QSizeF> <QString> <QStringList>
  <QThreadPool> <QTimer> <QUrl> <QUuid> <QVariant> <QWidget>)
set(TARNOVEL_TEST_HEADERS <gtest/gtest.h> <gmock/gmock.h> <QEventLoop> <QProcess> <QTemporaryDir>)

# They are taken only where these are the same, whatever Qt modules a target links.
function(tarnovel_define_modules target)
  target_compile_definitions(${target} PRIVATE QT_GUI_LIB QT_WIDGETS_LIB QT_TESTLIB_LIB)
  target_compile_options(${target} PRIVATE -pthread)
endfunction()

# tarnovel_precompiled(NAME [QUICK] LINKS... HEADERS...): a target whose precompiled headers others take over.
function(tarnovel_precompiled name)
  cmake_parse_arguments(PRE "QUICK" "" "LINKS;HEADERS" ${ARGN})
  if(NOT TARNOVEL_PRECOMPILED)
    return()
  endif()
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp CONTENT "" @ONLY)
  add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE tarnovel_flags ${PRE_LINKS})
  set_target_properties(${name} PROPERTIES TARNOVEL_QUICK "${PRE_QUICK}")
  target_precompile_headers(${name} PRIVATE ${PRE_HEADERS})
  tarnovel_define_modules(${name})
endfunction()

function(tarnovel_use_precompiled target name)
  if(TARGET ${name})
    target_precompile_headers(${target} REUSE_FROM ${name})
    tarnovel_define_modules(${target})
    get_target_property(quick ${name} TARNOVEL_QUICK)
    set_target_properties(${target} PROPERTIES TARNOVEL_QUICK "${quick}")
  endif()
endfunction()

# From nothing, compiling several files as one saves half of the time; where files are being edited, each alone is faster.
option(TARNOVEL_BATCHES "Compile several files as one" OFF)

# tarnovel_batches(TARGET MOST HEADERS FILE...): headers is the folder whose names the files may meet.
function(tarnovel_batches target most headers)
  if(NOT TARNOVEL_BATCHES)
    return()
  endif()
  execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/batches.py ${most} ${headers} ${ARGN}
    OUTPUT_VARIABLE rows COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+" rows "${rows}")
  foreach(row ${rows})
    string(REGEX REPLACE "^([0-9]+) (.*)$" "\\1;\\2" row "${row}")
    list(GET row 0 number)
    list(GET row 1 file)
    set_source_files_properties(${file} PROPERTIES UNITY_GROUP ${number})
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # In the window and in tests, a name of one file is hidden by another's local one; clang-tidy sees each file for itself.
  # clang takes even a file's own constants for hidden ones.
  if(target MATCHES "_app$|^test_" OR CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    set_target_properties(${target} PROPERTIES TARNOVEL_SHADOWS ON)
  endif()
endfunction()
