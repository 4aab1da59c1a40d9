# Finds the Compact Language Detector 2: CLD2::CLD2.
find_path(CLD2_INCLUDE_DIR cld2/public/compact_lang_det.h)
find_library(CLD2_LIBRARY cld2)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CLD2 REQUIRED_VARS CLD2_LIBRARY CLD2_INCLUDE_DIR)
if(CLD2_FOUND AND NOT TARGET CLD2::CLD2)
  add_library(CLD2::CLD2 UNKNOWN IMPORTED)
  set_target_properties(CLD2::CLD2 PROPERTIES IMPORTED_LOCATION "${CLD2_LIBRARY}"
                                              INTERFACE_INCLUDE_DIRECTORIES "${CLD2_INCLUDE_DIR}")
endif()
