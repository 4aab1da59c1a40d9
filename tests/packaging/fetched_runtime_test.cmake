# For the machine named by MACHINE: what tools/fetch_recognition_files brings is the library that was pinned, built for
# that machine, and the find module takes it. Run with cmake -P; SOURCE and WORK are folders.
# Without the network, or where the files are not there yet and can't be fetched, the test says so and is skipped.
set(files "${WORK}/files")
if(EXISTS "${SOURCE}/recognition_files/onnxruntime/${MACHINE}")
  file(COPY "${SOURCE}/recognition_files/onnxruntime/${MACHINE}" DESTINATION "${files}/onnxruntime")
elseif(NOT EXISTS "${files}/onnxruntime/${MACHINE}/libonnxruntime.so.1")
  execute_process(COMMAND "${SOURCE}/tools/fetch_recognition_files" --machine "${MACHINE}" --only-runtime "${files}"
                  RESULT_VARIABLE status ERROR_VARIABLE error OUTPUT_VARIABLE output)
  if(NOT status EQUAL 0)
    message("SKIPPED: ${error}${output}")
    return()
  endif()
endif()
# Headers are the same on every machine.
file(COPY "${SOURCE}/recognition_files/onnxruntime/include" DESTINATION "${files}/onnxruntime")
execute_process(COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}/tests/packaging/find_onnxruntime" -B "${WORK}/project"
                        "-DMACHINE=${MACHINE}" "-DMODULES=${SOURCE}/cmake" "-DOVRIN_RECOGNITION_FILES=${files}"
                RESULT_VARIABLE status ERROR_VARIABLE error OUTPUT_QUIET)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${error}")
endif()
file(READ "${WORK}/project/library" library)
if(NOT library STREQUAL "${files}/onnxruntime/${MACHINE}/libonnxruntime.so.1")
  message(FATAL_ERROR "the find module took ${library}")
endif()
file(SHA256 "${library}" hash)
file(READ "${SOURCE}/tools/fetch_recognition_files" pinned)
if(NOT pinned MATCHES "onnxruntime/${MACHINE}/libonnxruntime.so.1\": \"${hash}\"")
  message(FATAL_ERROR "${library} is not the library that was pinned: its SHA-256 is ${hash}")
endif()
# The machine's number in the head of an ELF file, least significant byte first.
set(elf_x86_64 3e00)
set(elf_aarch64 b700)
file(READ "${library}" number OFFSET 18 LIMIT 2 HEX)
if(NOT number STREQUAL elf_${MACHINE})
  message(FATAL_ERROR "${library} is built for machine ${number}, not for ${MACHINE} (${elf_${MACHINE}})")
endif()
