# A ring is a folder of the root that becomes one target (or two), named in the folder's own
# CMakeLists.txt. Its sources are whatever .cpp files lie in it, so a new file needs no new line
# here or there.

# ring_sources( <variable> [<pattern to leave out>] ): all .cpp files at and below this folder.
function( ring_sources variable )
   file( GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp )
   if( ARGC GREATER 1 )
      list( FILTER sources EXCLUDE REGEX "${ARGV1}" )
   endif()
   set( ${variable} ${sources} PARENT_SCOPE )
endfunction()

# seal( <target> ): a shared object of ours must find every symbol in the libraries that it names,
# so that nothing is silently taken from the process that loads it. clang's sanitizers do just that,
# hence the exception.
function( seal target )
   if( NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize" )
      target_link_options( ${target} PRIVATE -Wl,--no-undefined )
   endif()
endfunction()

# add_ring_test( <ring> <library>... ): the executable test-<ring> of all .cpp files in this folder;
# each file <name>_test.cpp becomes a test of ctest, named <ring>/<name>. Each TEST in it runs in a
# process of its own (tests/runner).
function( add_ring_test ring )
   ring_sources( sources )
   set( target test-${ring} )
   add_executable( ${target} ${sources} )
   target_include_directories( ${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} )
   # Tests are compiled far more often than they run; what they test is optimised.
   target_compile_options( ${target} PRIVATE -O0 )
   target_link_libraries( ${target} PRIVATE ${ARGN} test-runner rapidcheck )
   # Parsed once, not once for each file.
   target_precompile_headers( ${target} PRIVATE <gtest/gtest.h> <rapidcheck.h> )
   target_compile_definitions(
      ${target}
      PRIVATE VORNAL_SOURCE_DIR="${CMAKE_SOURCE_DIR}" VORNAL_BINARY_DIR="${CMAKE_BINARY_DIR}" )
   foreach( source IN LISTS sources )
      if( source MATCHES "${CMAKE_CURRENT_SOURCE_DIR}/(.*)_test\\.cpp$" )
         add_test(
            NAME ${ring}/${CMAKE_MATCH_1}
            COMMAND ${target} --tests-of ${ring}/${CMAKE_MATCH_1}_test.cpp
                    --seconds ${VORNAL_SECONDS_PER_TEST} )
         set_tests_properties( ${ring}/${CMAKE_MATCH_1} PROPERTIES LABELS ${ring} )
      endif()
   endforeach()
endfunction()

# optimise_tests( <file>... ): tests that try very many cases are optimised as well, and take seconds
# less. The precompiled headers are not.
function( optimise_tests )
   set_source_files_properties(
      ${ARGN} PROPERTIES COMPILE_OPTIONS -O2 SKIP_PRECOMPILE_HEADERS ON )
endfunction()
