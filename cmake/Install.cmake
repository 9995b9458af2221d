# What `make install` puts where. Programs and libraries find each other by relative paths, so that
# the installed tree can be moved.
include( CMakePackageConfigHelpers )

set( packageDir lib/cmake/VornalPlatform )
# The libraries are private to the program and its plug-ins. An author's build finds them by the
# CMake package, and the loader by the paths in the files that need them.
set( libraryDir lib/vornal )

# find_libraries_in( <target> <folder> ): where the loader looks for the libraries of the project: in
# the build folder, beside the target, and in an installed tree in <folder>. Both are in the file
# from the beginning. CMake would fill up the path of the build folder with colons, and change it
# while it installs; the loader takes each colon for the current folder, and runs a library that
# stands there.
function( find_libraries_in target folder )
   set_target_properties(
      ${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN;${folder}" )
endfunction()

# install_library_ring( <ring> ): a shared library that plug-ins are compiled against, its headers
# under include/vornal/<ring>, and its place in the CMake package as Vornal::<ring>.
function( install_library_ring ring )
   find_libraries_in( ${ring} "$ORIGIN" )
   target_include_directories( ${ring} INTERFACE $<INSTALL_INTERFACE:include/vornal/${ring}> )
   install( TARGETS ${ring} EXPORT VornalPlatform LIBRARY DESTINATION ${libraryDir} )
   install(
      DIRECTORY ${CMAKE_SOURCE_DIR}/${ring}/
      DESTINATION include/vornal/${ring}
      FILES_MATCHING
      PATTERN *.h )
endfunction()

install_library_ring( platform )
install_library_ring( hardware-access )
install(
   EXPORT VornalPlatform
   NAMESPACE Vornal::
   DESTINATION ${packageDir}
   FILE VornalPlatformTargets.cmake )
configure_package_config_file(
   ${CMAKE_SOURCE_DIR}/cmake/VornalPlatformConfig.cmake.in
   ${CMAKE_BINARY_DIR}/VornalPlatformConfig.cmake
   INSTALL_DESTINATION ${packageDir} )
write_basic_package_version_file(
   ${CMAKE_BINARY_DIR}/VornalPlatformConfigVersion.cmake COMPATIBILITY SameMinorVersion )
install(
   FILES
      ${CMAKE_BINARY_DIR}/VornalPlatformConfig.cmake
      ${CMAKE_BINARY_DIR}/VornalPlatformConfigVersion.cmake
   DESTINATION ${packageDir} )

find_libraries_in( VornalEvpn "$ORIGIN/.." )
install( TARGETS VornalEvpn LIBRARY DESTINATION ${libraryDir}/plugins )

find_libraries_in( vornal "$ORIGIN/../${libraryDir}" )
install( TARGETS vornal RUNTIME DESTINATION bin )

# The program prints its manual page and its completions itself. install_words( <folder> <file>
# <word>... ): what it prints to these words.
function( install_words folder file )
   list( JOIN ARGN " " words )
   install( CODE "
      set( folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}\" )
      file( MAKE_DIRECTORY \"\${folder}\" )
      execute_process(
         COMMAND \"$<TARGET_FILE:vornal>\" ${words} OUTPUT_FILE \"\${folder}/${file}\"
         COMMAND_ERROR_IS_FATAL ANY )
      message( STATUS \"Installing: \${folder}/${file}\" )" )
endfunction()

install_words( share/man/man1 vornal.1 manual )
install_words( share/bash-completion/completions vornal completion bash )
install_words( share/zsh/site-functions _vornal completion zsh )

# Documents and scenarios lead to each other by relative paths, as here.
install( DIRECTORY scenarios explorations docs DESTINATION share/vornal )
install( FILES CHANGELOG.md DESTINATION share/vornal )
