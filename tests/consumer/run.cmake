# Needs BUILD (the library's build folder), CONSUMER, COMPILER and SANITIZE.
set(work ${BUILD}/consumer)
file(REMOVE_RECURSE ${work})

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/prefix)
if(SANITIZE)
  set(flags -DCMAKE_CXX_FLAGS=-fsanitize=address,undefined)
endif()
run(${CMAKE_COMMAND} -G Ninja -S ${CONSUMER} -B ${work}/build
  -DCMAKE_PREFIX_PATH=${work}/prefix -DCMAKE_CXX_COMPILER=${COMPILER} ${flags})
run(${CMAKE_COMMAND} --build ${work}/build)
run(${work}/build/consumer)
