# Places what the text recogniser needs when it runs beside the built program, in the same shape as it is installed:
#
#   share/ovrin/models   the networks
#   lib/ovrin            ONNX Runtime, where the distribution doesn't have it

foreach(_file PP-OCRv6_det_tiny.onnx PP-OCRv6_rec_small.onnx)
  set(_model "${OVRIN_RECOGNITION_FILES}/models/${_file}")
  configure_file("${_model}" "${CMAKE_BINARY_DIR}/share/ovrin/models/${_file}" COPYONLY)
  install(FILES "${_model}" DESTINATION share/ovrin/models)
endforeach()

if(ONNXRuntime_BUNDLED)
  # The program asks for the library by its soname.
  set(_runtime "${CMAKE_BINARY_DIR}/lib/ovrin/libonnxruntime.so.1")
  configure_file("${ONNXRuntime_LIBRARY}" "${_runtime}" COPYONLY)
  set_target_properties(ONNXRuntime::ONNXRuntime PROPERTIES IMPORTED_LOCATION "${_runtime}")
  install(FILES "${_runtime}" DESTINATION lib/ovrin)
  set(_licenses "${OVRIN_RECOGNITION_FILES}/licenses")
  install(FILES "${_licenses}/onnxruntime-LICENSE" "${_licenses}/onnxruntime-ThirdPartyNotices.txt"
          DESTINATION share/doc/ovrin)
endif()
