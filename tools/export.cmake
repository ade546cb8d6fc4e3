# mardle-export: tables, trees and pages from what mardle wrote.

find_package(nlohmann_json 3.9 REQUIRED)

# The page's style and script are files of their own and become part of the program.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS html_page.css html_page.js)
file(READ html_page.css page_style)
file(READ html_page.js page_script)
configure_file(html_page_assets.h.in
  ${PROJECT_BINARY_DIR}/generated/tools/html_page_assets.h @ONLY)

add_library(mardle_export_app STATIC
  export_clustering.cc
  export_dot.cc
  export_escape.cc
  export_fields.cc
  export_file.cc
  export_linkage.cc
  export_newick.cc
  export_request.cc
  export_rows.cc
  export_run.cc
  export_table.cc
  export_tree.cc
  html_page.cc
  html_page_features.cc
  html_page_numbers.cc
  html_page_parts.cc
  html_page_pictures.cc
  html_page_quality.cc
  html_page_rows.cc
  html_page_tree.cc)
mardle_target(mardle_export_app)
target_include_directories(mardle_export_app PRIVATE ${PROJECT_BINARY_DIR}/generated)
target_compile_definitions(mardle_export_app PRIVATE MARDLE_VERSION="${PROJECT_VERSION}")
target_link_libraries(mardle_export_app
  PUBLIC mardle_io mardle_measures PRIVATE CLI11::CLI11 nlohmann_json::nlohmann_json)

add_executable(mardle-export export_main.cc)
mardle_target(mardle-export)
target_link_libraries(mardle-export PRIVATE mardle_export_app)
set_target_properties(mardle-export PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})

install(TARGETS mardle-export RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
mardle_install_manual(mardle-export.1 program)
