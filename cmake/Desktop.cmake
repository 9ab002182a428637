# hylden_desktop: the windows, on Qt. Everything in a folder's qt/, and widgets/.
find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets PrintSupport Svg)
find_package(QCustomPlotQt6 REQUIRED)

file(GLOB_RECURSE desktopSources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  ${PROJECT_SOURCE_DIR}/src/*.cpp ${PROJECT_SOURCE_DIR}/src/*.h ${PROJECT_SOURCE_DIR}/src/*.ui)
list(FILTER desktopSources INCLUDE REGEX "^src/([a-z]+/qt|widgets)/")
list(TRANSFORM desktopSources PREPEND ${PROJECT_SOURCE_DIR}/)
# Each form's header has a rule of its own: AUTOUIC writes it elsewhere than it tells the build, which then compiles
# a changed form only the next time.
set(forms ${desktopSources})
list(FILTER forms INCLUDE REGEX "[.]ui$")
list(FILTER desktopSources EXCLUDE REGEX "[.]ui$")
qt_wrap_ui(formHeaders ${forms})
# Those of an older build tree would be found first.
file(GLOB former ${CMAKE_CURRENT_BINARY_DIR}/hylden_desktop_autogen/include/ui_*.h)
if(former)
  file(REMOVE ${former})
endif()
add_custom_target(hylden_forms DEPENDS ${formHeaders})
add_library(hylden_desktop STATIC ${desktopSources} ${formHeaders})
target_include_directories(hylden_desktop PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
set_target_properties(hylden_desktop PROPERTIES AUTOMOC ON)
# AUTOMOC looks again when a file that it knows has changed: a class that is added has to be seen by the next build.
if(NOT desktopSources STREQUAL "$CACHE{HYLDEN_DESKTOP_SOURCES}")
  file(REMOVE ${CMAKE_CURRENT_BINARY_DIR}/hylden_desktop_autogen/timestamp)
  set(HYLDEN_DESKTOP_SOURCES "${desktopSources}" CACHE INTERNAL "Those of the last configuration")
endif()
target_link_libraries(hylden_desktop PUBLIC hylden_core Qt6::Widgets Qt6::PrintSupport Qt6::Svg
  PRIVATE QCustomPlotQt6::QCustomPlotQt6)
target_precompile_headers(hylden_desktop PRIVATE <QtWidgets>)

# The manual and the demo station stand beside the program.
configure_file(${PROJECT_SOURCE_DIR}/help/hylden.md ${PROJECT_BINARY_DIR}/bin/hylden.hlp COPYONLY)
add_custom_target(hylden_station ALL COMMAND ${CMAKE_COMMAND} -E copy_directory
  ${PROJECT_SOURCE_DIR}/examples/station ${PROJECT_BINARY_DIR}/bin/station)
