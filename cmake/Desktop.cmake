# hylden_desktop: the windows, on Qt. Everything in a folder's qt/, and widgets/.
find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets PrintSupport)

file(GLOB_RECURSE desktopSources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  ${PROJECT_SOURCE_DIR}/src/*.cpp ${PROJECT_SOURCE_DIR}/src/*.h ${PROJECT_SOURCE_DIR}/src/*.ui)
list(FILTER desktopSources INCLUDE REGEX "^src/([a-z]+/qt|widgets)/")
list(TRANSFORM desktopSources PREPEND ${PROJECT_SOURCE_DIR}/)
add_library(hylden_desktop STATIC ${desktopSources})
# The list of sources is a dependency of its own: a form that is added later is seen by the next build.
set_target_properties(hylden_desktop PROPERTIES AUTOMOC ON AUTOUIC ON
  AUTOGEN_TARGET_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/hylden_desktop_autogen.dir/AutogenInfo.json)
target_link_libraries(hylden_desktop PUBLIC hylden_core Qt6::Widgets Qt6::PrintSupport)
target_precompile_headers(hylden_desktop PRIVATE <QtWidgets>)

# The manual stands beside the program.
configure_file(${PROJECT_SOURCE_DIR}/help/hylden.md ${PROJECT_BINARY_DIR}/bin/hylden.hlp COPYONLY)
