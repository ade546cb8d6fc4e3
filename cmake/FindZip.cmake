# Finds libzip: target Zip::Zip.

find_path(Zip_INCLUDE_DIR zip.h)
find_library(Zip_LIBRARY zip)
mark_as_advanced(Zip_INCLUDE_DIR Zip_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Zip REQUIRED_VARS Zip_LIBRARY Zip_INCLUDE_DIR)

if(Zip_FOUND AND NOT TARGET Zip::Zip)
  add_library(Zip::Zip UNKNOWN IMPORTED)
  set_target_properties(Zip::Zip PROPERTIES
    IMPORTED_LOCATION "${Zip_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Zip_INCLUDE_DIR}")
endif()
