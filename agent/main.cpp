#include <CommandLine/Program.h>

int main( int argc, char ** argv ) {
   return CommandLine::program( argc, argv );
}
