# Every warning is an error, for both compilers. Three that follow values through inlined code cry
# wolf in g++ 12 and are left out: -Wnull-dereference (behind look-ups that return a pointer),
# -Wmaybe-uninitialized (inside std::variant and std::regex), -Wdangling-pointer (at a guard object
# that registers itself and leaves in its destructor).
add_compile_options(
   -Werror
   -Wall
   -Wextra
   -Wpedantic
   -Wshadow
   -Wconversion
   -Wsign-conversion
   -Wnon-virtual-dtor
   -Woverloaded-virtual
   -Wold-style-cast
   -Wcast-qual
   -Wformat=2
   -Wundef
   $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
   $<$<CXX_COMPILER_ID:GNU>:-Wno-dangling-pointer> )
