# Writes the source file that knows which commit is built. A file with an unchanged text is left as
# it is, so that only a new commit compiles anything.
#
# usage: cmake -D SOURCE=FOLDER -D TEMPLATE=FILE -D OUTPUT=FILE -P Commit.cmake
#
# A source package has no repository, and names its commit in debian/commit. A tree with neither
# has an unknown commit, also within the repository of another project.

set( commit "" )
if( EXISTS ${SOURCE}/debian/commit )
   file( STRINGS ${SOURCE}/debian/commit commit LIMIT_COUNT 1 )
elseif( EXISTS ${SOURCE}/.git )
   execute_process(
      COMMAND git describe --always --abbrev=12 --dirty=-changed
      WORKING_DIRECTORY ${SOURCE}
      OUTPUT_VARIABLE commit
      OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET )
endif()

if( commit )
   set( commit "commit ${commit}" )
else()
   set( commit "unknown commit" )
endif()
configure_file( ${TEMPLATE} ${OUTPUT} @ONLY )
