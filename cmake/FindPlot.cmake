# Finds GNU libplot, the C library of plotutils: target Plot::Plot.

find_path(Plot_INCLUDE_DIR plot.h)
find_library(Plot_LIBRARY plot)
mark_as_advanced(Plot_INCLUDE_DIR Plot_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Plot REQUIRED_VARS Plot_LIBRARY Plot_INCLUDE_DIR)

if(Plot_FOUND AND NOT TARGET Plot::Plot)
  add_library(Plot::Plot UNKNOWN IMPORTED)
  set_target_properties(Plot::Plot PROPERTIES
    IMPORTED_LOCATION "${Plot_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Plot_INCLUDE_DIR}")
endif()
