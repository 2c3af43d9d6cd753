# cmake -DBUILD=… -DSOURCE=… -P test.cmake: installs the build tree to a temporary prefix, builds the
# consumer with its CMake package, and runs it on a store of sample plans.
set(work ${BUILD}/consumer)
file(REMOVE_RECURSE ${work})
set(ENV{DESTDIR})
set(ENV{VANTREL_GROUP_CONTAINER} ${work}/group)
set(ENV{VANTREL_BUNDLE} ${work}/prefix/share/vantrel)
foreach(step
    "${CMAKE_COMMAND};--install;${BUILD};--prefix;${work}/prefix"
    "${CMAKE_COMMAND};-S;${SOURCE};-B;${work}/build;-G;Ninja;-DCMAKE_PREFIX_PATH=${work}/prefix"
    "${CMAKE_COMMAND};--build;${work}/build"
    "${work}/prefix/bin/vantrel;store;sample")
  execute_process(COMMAND ${step} COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
endforeach()
execute_process(COMMAND ${work}/build/next_shoots 41.4 2.1 COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE told)
if(NOT told MATCHES "[0-9]+km\n")
  message(FATAL_ERROR "the consumer said: ${told}")
endif()
