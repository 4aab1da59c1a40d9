# Places what the text recogniser needs when it runs beside the built program, in the same shape as it is installed:
#
#   share/ovrin/models   the networks
#   lib/ovrin            ONNX Runtime, where the distribution doesn't have it

foreach(_file PP-OCRv6_det_tiny.onnx PP-OCRv6_rec_small.onnx)
  set(_model "${OVRIN_RECOGNITION_FILES}/models/${_file}")
  configure_file("${_model}" "${CMAKE_BINARY_DIR}/share/ovrin/models/${_file}" COPYONLY)
  install(FILES "${_model}" DESTINATION share/ovrin/models)
endforeach()

# The network that reads lines, for processors that multiply bytes.
add_custom_target(ovrin_recognition_files ALL)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
  set(_bytes "${CMAKE_BINARY_DIR}/share/ovrin/models/PP-OCRv6_rec_small_int8.onnx")
  set(_numbers "${OVRIN_RECOGNITION_FILES}/models/PP-OCRv6_rec_small.onnx")
  set(_tool "${CMAKE_SOURCE_DIR}/tools/quantize_network")
  set(_ranges "${CMAKE_SOURCE_DIR}/tools/recognition_ranges.json")
  add_custom_command(OUTPUT "${_bytes}" COMMAND "${_tool}" "${_numbers}" "${_ranges}" "${_bytes}"
                     DEPENDS "${_tool}" "${_ranges}" "${_numbers}" COMMENT "Making layers of bytes" VERBATIM)
  add_custom_target(ovrin_network_of_bytes DEPENDS "${_bytes}")
  add_dependencies(ovrin_recognition_files ovrin_network_of_bytes)
  install(FILES "${_bytes}" DESTINATION share/ovrin/models)
endif()

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
