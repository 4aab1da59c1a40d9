# Finds ONNX Runtime's C++ API: the distribution's package where there is one, else the files that the npm package
# com.github.asus4.onnxruntime brought into node_modules (headers in its xcframework, the library under Plugins/Linux).
#
#   ONNXRuntime::ONNXRuntime   imported target
#   ONNXRuntime_LIBRARY        the shared library; ONNXRuntime_BUNDLED is true when it has to be installed with Ovrin

set(_npm "${CMAKE_SOURCE_DIR}/node_modules/com.github.asus4.onnxruntime/Plugins")
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  set(_npm_arch "Linux/x64")
else()
  set(_npm_arch "Linux/arm64")
endif()
file(GLOB _npm_headers "${_npm}/iOS~/onnxruntime.xcframework/ios-arm64/onnxruntime.framework/Headers")

find_path(ONNXRuntime_INCLUDE_DIR onnxruntime_cxx_api.h PATH_SUFFIXES onnxruntime onnxruntime/core/session)
if(NOT ONNXRuntime_INCLUDE_DIR AND _npm_headers)
  set(ONNXRuntime_INCLUDE_DIR "${_npm_headers}" CACHE PATH "ONNX Runtime headers" FORCE)
endif()
find_library(ONNXRuntime_LIBRARY onnxruntime PATHS "${_npm}/${_npm_arch}")

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(ONNXRuntime REQUIRED_VARS ONNXRuntime_LIBRARY ONNXRuntime_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install the distribution's libonnxruntime-dev, or run 'npm ci' in the project's folder")

string(FIND "${ONNXRuntime_LIBRARY}" "${CMAKE_SOURCE_DIR}/node_modules" _position)
if(_position EQUAL 0)
  set(ONNXRuntime_BUNDLED TRUE)
else()
  set(ONNXRuntime_BUNDLED FALSE)
endif()

if(ONNXRuntime_FOUND AND NOT TARGET ONNXRuntime::ONNXRuntime)
  add_library(ONNXRuntime::ONNXRuntime SHARED IMPORTED)
  set_target_properties(ONNXRuntime::ONNXRuntime PROPERTIES
    IMPORTED_LOCATION "${ONNXRuntime_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ONNXRuntime_INCLUDE_DIR}")
endif()
