# Debian packages: cpack -G DEB makes mardle, libmolva1 and libmolva-dev, and with MOLVA_PYTHON
# python3-molva.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The mardle authors <mardle@example.org>")
set(CPACK_PACKAGE_VENDOR "The mardle authors")
set(CPACK_COMPONENTS_ALL program library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME mardle)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
# Lines that begin with a blank would be shown as they are.
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "One run gives a clustering that optimises one of nine criterion functions, a
report that explains it, the columns that describe each cluster, trees over
clusters and rows, result files and plots.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libmolva1)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "The engine of mardle as a library for C and C++.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmolva-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libmolva1 (= ${PROJECT_VERSION}-1)")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Header, static library, CMake package and pkg-config file of libmolva.")

set(debian_packages mardle libmolva1 libmolva-dev)

if(MOLVA_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
  list(APPEND debian_packages python3-molva)
  # The extension is built for one version of the interpreter.
  math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-molva)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  string(CONCAT CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next_minor}), "
    "python3-numpy, python3-scipy, python3-sklearn (>= 1.2)")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS mardle)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-matplotlib, python3-pandas, python3-distributed")
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION "Estimators after scikit-learn's rules over the engine of mardle: the same
clusters, statistics, features and trees for numpy arrays and scipy sparse
matrices, a sweep over numbers of clusters, and the page of a run.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/debian/python/postinst
    ${PROJECT_SOURCE_DIR}/cmake/debian/python/prerm)
endif()

# What every Debian package documents: its licence and its changes.
foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL debian_packages)
  set(folder ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright DESTINATION ${folder}
    COMPONENT ${component})
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz ${PROJECT_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${folder} COMPONENT ${component})
endforeach()
mardle_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog.gz)
mardle_compressed(${PROJECT_SOURCE_DIR}/cmake/debian/changelog changelog.Debian.gz)

# Guides and examples, laid out as in the sources, so that their links hold.
set(guides ${CMAKE_INSTALL_DATADIR}/doc/mardle)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${guides} COMPONENT program)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${guides} COMPONENT program
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${guides} COMPONENT program
  PATTERN clients EXCLUDE PATTERN "*.clustering.*" EXCLUDE PATTERN "*.tree.*" EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/clients
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libmolva-dev/examples COMPONENT development)

# Whoever installs without a package gets the texts of the licences too; packages refer to Debian's.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/LICENSES/GPL-2.0.txt
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/mardle COMPONENT licences)

include(CPack)
