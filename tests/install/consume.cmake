file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${WORK_DIR}/prefix
  RESULT_VARIABLE rc OUTPUT_QUIET)
if(rc)
  message(FATAL_ERROR "install failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/build -G Ninja
  -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix "-DCMAKE_CXX_FLAGS=${CONSUMER_FLAGS}"
  "-DCMAKE_EXE_LINKER_FLAGS=${CONSUMER_FLAGS}" RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "consumer configure failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "consumer build failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/build/consumer RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(rc)
  message(FATAL_ERROR "consumer run failed: ${rc} ${out}")
endif()
message(STATUS "consumer says: ${out}")

# The same program built the way a Meson or makefile project would, from
# the installed pkg-config file alone.
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${WORK_DIR}/prefix/lib/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs morvane RESULT_VARIABLE rc OUTPUT_VARIABLE flags
  OUTPUT_STRIP_TRAILING_WHITESPACE)
if(rc)
  message(FATAL_ERROR "pkg-config does not know morvane: ${rc}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(consumer_flags UNIX_COMMAND "${CONSUMER_FLAGS}")
execute_process(COMMAND c++ -std=c++20 ${consumer_flags} ${CONSUMER_DIR}/main.cpp ${flags}
  -Wl,-rpath,${WORK_DIR}/prefix/lib -o ${WORK_DIR}/pkgconfig-consumer RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "pkg-config consumer build failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/pkgconfig-consumer RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(rc)
  message(FATAL_ERROR "pkg-config consumer run failed: ${rc} ${out}")
endif()

# The tools are installed with the library and run from there.
if(EXISTS ${WORK_DIR}/prefix/bin/morvane-tree)
  execute_process(COMMAND ${WORK_DIR}/prefix/bin/morvane-tree valKey: city
    INPUT_FILE ${CONSUMER_DIR}/sample.json RESULT_VARIABLE rc OUTPUT_VARIABLE out)
  if(rc OR NOT out STREQUAL "\"Oslo\"\n")
    message(FATAL_ERROR "installed morvane-tree failed: ${rc} ${out}")
  endif()
endif()
