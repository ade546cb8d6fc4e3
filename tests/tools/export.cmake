# The tests of mardle-export: its parts, its pages, its manual page.

mardle_tests(mardle_export_test mardle_export_app
  tools/export_clustering_test.cc
  tools/export_escape_test.cc
  tools/export_request_test.cc
  tools/export_run_test.cc
  tools/export_table_test.cc
  tools/export_tree_formats_test.cc
  tools/export_tree_test.cc)
target_link_libraries(mardle_export_test PRIVATE GTest::gmock)

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(page_folder ${PROJECT_SOURCE_DIR}/tests/tools)
add_test(NAME export_page
  COMMAND ${Python3_EXECUTABLE} ${page_folder}/export_page.py
    $<TARGET_FILE:mardle> $<TARGET_FILE:mardle-export> ${PROJECT_SOURCE_DIR})
add_test(NAME export_page_in_browser
  COMMAND ${Python3_EXECUTABLE} ${page_folder}/export_browser.py
    $<TARGET_FILE:mardle> $<TARGET_FILE:mardle-export>)
set_tests_properties(export_page_in_browser PROPERTIES SKIP_RETURN_CODE 77)
add_test(NAME export_man_page
  COMMAND ${Python3_EXECUTABLE} ${page_folder}/export_man_page.py
    $<TARGET_FILE:mardle-export> ${PROJECT_SOURCE_DIR}/docs/mardle-export.1)
