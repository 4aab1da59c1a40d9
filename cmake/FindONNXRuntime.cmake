# Finds ONNX Runtime's C++ API: the distribution's package where there is one that is new enough, else the files that
# tools/fetch_recognition_files placed into OVRIN_RECOGNITION_FILES.
#
#   ONNXRuntime::ONNXRuntime   imported target
#   ONNXRuntime_LIBRARY        the shared library; ONNXRuntime_BUNDLED is true when it has to be installed with Ovrin
#   ONNXRuntime_VERSION        1.N, N being the version of the headers' interface

set(OVRIN_RECOGNITION_FILES "${CMAKE_SOURCE_DIR}/recognition_files" CACHE PATH "Networks and the runtime for them")

function(_onnxruntime_version header variable)
  file(STRINGS "${header}" line REGEX "^#define ORT_API_VERSION +[0-9]+" LIMIT_COUNT 1)
  string(REGEX REPLACE ".*ORT_API_VERSION +([0-9]+).*" "1.\\1" version "${line}")
  set(${variable} "${version}" PARENT_SCOPE)
endfunction()

set(ONNXRuntime_BUNDLED FALSE)
# A build folder remembers where the files were; those may have gone since.
foreach(_remembered ONNXRuntime_INCLUDE_DIR ONNXRuntime_LIBRARY)
  if(${_remembered} AND NOT EXISTS "${${_remembered}}")
    unset(${_remembered} CACHE)
  endif()
endforeach()
find_path(ONNXRuntime_INCLUDE_DIR onnxruntime_cxx_api.h PATH_SUFFIXES onnxruntime onnxruntime/core/session)
find_library(ONNXRuntime_LIBRARY onnxruntime)
if(ONNXRuntime_INCLUDE_DIR AND ONNXRuntime_LIBRARY)
  _onnxruntime_version("${ONNXRuntime_INCLUDE_DIR}/onnxruntime_c_api.h" ONNXRuntime_VERSION)
endif()
if(NOT ONNXRuntime_VERSION OR ONNXRuntime_VERSION VERSION_LESS ONNXRuntime_FIND_VERSION)
  set(_fetched "${OVRIN_RECOGNITION_FILES}/onnxruntime")
  set(ONNXRuntime_INCLUDE_DIR "${_fetched}/include")
  set(ONNXRuntime_LIBRARY "${_fetched}/${CMAKE_SYSTEM_PROCESSOR}/libonnxruntime.so.1")
  set(ONNXRuntime_VERSION "")
  if(EXISTS "${ONNXRuntime_INCLUDE_DIR}/onnxruntime_c_api.h" AND EXISTS "${ONNXRuntime_LIBRARY}")
    _onnxruntime_version("${ONNXRuntime_INCLUDE_DIR}/onnxruntime_c_api.h" ONNXRuntime_VERSION)
    set(ONNXRuntime_BUNDLED TRUE)
  else()
    set(ONNXRuntime_LIBRARY "ONNXRuntime_LIBRARY-NOTFOUND")
  endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(ONNXRuntime REQUIRED_VARS ONNXRuntime_LIBRARY ONNXRuntime_INCLUDE_DIR
  VERSION_VAR ONNXRuntime_VERSION
  REASON_FAILURE_MESSAGE "install the distribution's libonnxruntime-dev, or run tools/install_dependencies")

if(ONNXRuntime_FOUND AND NOT TARGET ONNXRuntime::ONNXRuntime)
  add_library(ONNXRuntime::ONNXRuntime SHARED IMPORTED)
  set_target_properties(ONNXRuntime::ONNXRuntime PROPERTIES
    IMPORTED_LOCATION "${ONNXRuntime_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ONNXRuntime_INCLUDE_DIR}")
endif()
