# Finds the OpenCV modules that are asked for as components: targets opencv_core, opencv_imgproc, ...
#
# OpenCV's own configuration comes with the distribution's package of the whole library, with its user interface and
# video parts; this finds the small packages of single modules too.
find_path(OpenCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
if(OpenCV_INCLUDE_DIR)
  file(STRINGS "${OpenCV_INCLUDE_DIR}/opencv2/core/version.hpp" _lines REGEX "^#define CV_VERSION_(MAJOR|MINOR|REVISION) ")
  string(REGEX REPLACE ".*MAJOR +([0-9]+).*MINOR +([0-9]+).*REVISION +([0-9]+).*" "\\1.\\2.\\3" OpenCV_VERSION "${_lines}")
endif()
foreach(_module IN LISTS OpenCV_FIND_COMPONENTS)
  find_library(OpenCV_${_module}_LIBRARY opencv_${_module})
  if(OpenCV_INCLUDE_DIR AND OpenCV_${_module}_LIBRARY)
    set(OpenCV_${_module}_FOUND TRUE)
  endif()
endforeach()
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCV REQUIRED_VARS OpenCV_INCLUDE_DIR VERSION_VAR OpenCV_VERSION HANDLE_COMPONENTS)
if(OpenCV_FOUND)
  foreach(_module IN LISTS OpenCV_FIND_COMPONENTS)
    if(NOT TARGET opencv_${_module})
      add_library(opencv_${_module} UNKNOWN IMPORTED)
      set_target_properties(opencv_${_module} PROPERTIES IMPORTED_LOCATION "${OpenCV_${_module}_LIBRARY}"
                                                         INTERFACE_INCLUDE_DIRECTORIES "${OpenCV_INCLUDE_DIR}")
    endif()
  endforeach()
endif()
