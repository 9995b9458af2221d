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

# compile_together( <target> ): the sources of a folder are compiled by eights, as one. Most of what a
# source costs are its headers and their templates, which are then paid for once for eight: a ring
# takes a third of the time. A change compiles its eight, though, and a file that comes or goes shifts
# the eights behind it. Within an eight, the order of initialisation is that of the text, so a
# sanitizer has none to check there. A source with options of its own stays by itself.
option( VORNAL_COMPILE_TOGETHER "Compile the sources of a folder by eights" ON )
function( compile_together target )
   get_target_property( sources ${target} SOURCES )
   foreach( source IN LISTS sources )
      cmake_path( GET source PARENT_PATH path )
      cmake_path( GET path FILENAME folder )
      list( APPEND sourcesOf_${folder} ${source} )
      list( LENGTH sourcesOf_${folder} number )
      math( EXPR group "( ${number} - 1 ) / 8" )
      set_source_files_properties( ${source} PROPERTIES UNITY_GROUP ${folder}${group} )
   endforeach()
   set_target_properties(
      ${target} PROPERTIES UNITY_BUILD ${VORNAL_COMPILE_TOGETHER} UNITY_BUILD_MODE GROUP )
endfunction()

# seal( <target> ): a shared object of ours must find every symbol in the libraries that it names,
# so that nothing is silently taken from the process that loads it. clang's sanitizers do just that,
# hence the exception.
function( seal target )
   if( NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize" )
      target_link_options( ${target} PRIVATE -Wl,--no-undefined )
   endif()
endfunction()

# add_ring_test( <ring> <library>... [PRECOMPILED <header>...] [NEEDS <target>...] ): the executable
# test-<ring> of all .cpp files in this folder; each file <name>_test.cpp becomes a test of ctest,
# named <ring>/<name>. Each TEST in it runs in a process of its own (tests/runner).
#
# PRECOMPILED: headers that are parsed once, not once for each file, beside those of the frameworks.
# NEEDS: what the tests find in the build folder.
function( add_ring_test ring )
   cmake_parse_arguments( PARSE_ARGV 1 arg "" "" "PRECOMPILED;NEEDS" )
   ring_sources( sources )
   if( VORNAL_TESTS_OF_THREADS_ALONE )
      leave_out_tests_without_threads( sources )
   endif()
   set( tests ${sources} )
   list( FILTER tests INCLUDE REGEX "_test\\.cpp$" )
   if( NOT tests )
      return()
   endif()

   set( target test-${ring} )
   add_executable( ${target} ${sources} )
   compile_together( ${target} )
   add_dependencies( ring-tests ${target} ${arg_NEEDS} )
   if( arg_NEEDS )
      add_dependencies( ${target} ${arg_NEEDS} )
   endif()
   target_include_directories( ${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} )
   # Tests are compiled far more often than they run; what they test is optimised.
   target_compile_options( ${target} PRIVATE -O0 )
   target_link_libraries( ${target} PRIVATE ${arg_UNPARSED_ARGUMENTS} test-runner rapidcheck )
   target_precompile_headers(
      ${target} PRIVATE <gtest/gtest.h> <rapidcheck.h> ${arg_PRECOMPILED} )
   target_compile_definitions(
      ${target}
      PRIVATE VORNAL_SOURCE_DIR="${CMAKE_SOURCE_DIR}" VORNAL_BINARY_DIR="${CMAKE_BINARY_DIR}" )
   foreach( test IN LISTS tests )
      cmake_path( RELATIVE_PATH test BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} )
      string( REGEX REPLACE "_test\\.cpp$" "" name ${ring}/${test} )
      add_test( NAME ${name} COMMAND ${target} --tests-of ${ring}/${test} --seconds
                                     ${VORNAL_SECONDS_PER_TEST} )
      set_tests_properties( ${name} PROPERTIES LABELS ${ring} )
   endforeach()
endfunction()

# leave_out_tests_without_threads( <variable> ): of a list of sources, the tests that start threads
# stay, and whatever is no test.
function( leave_out_tests_without_threads variable )
   set( kept "" )
   foreach( source IN LISTS ${variable} )
      set( threads "no test" )
      if( source MATCHES "_test\\.cpp$" )
         file( STRINGS ${source} threads REGEX "std::(j?thread|async)" )
      endif()
      if( threads )
         list( APPEND kept ${source} )
      endif()
   endforeach()
   set( ${variable} ${kept} PARENT_SCOPE )
endfunction()

# optimise_tests( <file>... ): tests that try very many cases are optimised as well, and take seconds
# less. The precompiled headers are not.
function( optimise_tests )
   set_source_files_properties(
      ${ARGN} PROPERTIES COMPILE_OPTIONS -O2 SKIP_PRECOMPILE_HEADERS ON )
endfunction()
