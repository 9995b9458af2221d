#include <Testing/JUnit.h>

#include <algorithm>
#include <filesystem>

#include <fmt/format.h>
#include <pugixml.hpp>

#include <Text/Printable.h>

namespace Testing {

namespace {

std::string secondsText( double seconds ) {
   return fmt::format( "{:.3f}", seconds );
}

void setText( pugi::xml_node node, char const * attribute, std::string const & text ) {
   node.append_attribute( attribute ).set_value( Text::printable( text ).c_str() );
}

void addCounts( pugi::xml_node node, std::vector< Result > const & results, double seconds ) {
   auto const skipped = std::count_if( results.begin(), results.end(),
                                       []( Result const & one ) { return !one.isOver; } );
   node.append_attribute( "name" ).set_value( "vornal test" );
   node.append_attribute( "tests" ).set_value( results.size() );
   node.append_attribute( "failures" ).set_value( failedIn( results ) );
   node.append_attribute( "errors" ).set_value( 0 );
   node.append_attribute( "skipped" ).set_value( skipped );
   setText( node, "time", secondsText( seconds ) );
}

std::string placed( Failure const & failure ) {
   return ( failure.place.empty() ? "" : failure.place + ": " ) + failure.what;
}

std::string textOf( std::vector< Failure > const & failures ) {
   std::string text;
   for ( Failure const & failure : failures ) {
      text += placed( failure ) + '\n';
      for ( std::string const & line : failure.lines ) {
         text += "   " + line + '\n';
      }
   }
   return text;
}

void addCase( pugi::xml_node suite, Result const & result ) {
   std::filesystem::path const file( result.file );
   pugi::xml_node test = suite.append_child( "testcase" );
   setText( test, "classname", file.parent_path().string() );
   setText( test, "name", result.title.empty() ? file.filename().string() : result.title );
   setText( test, "file", result.file );
   setText( test, "time", secondsText( result.seconds ) );
   if ( !result.isOver ) {
      setText( test.append_child( "skipped" ), "message", "the test run was interrupted" );
   } else if ( result.isFailed() ) {
      pugi::xml_node failure = test.append_child( "failure" );
      setText( failure, "message", placed( result.failures.front() ) );
      failure.text().set( Text::printableLines( textOf( result.failures ) ).c_str() );
   }
}

}  // namespace

void writeJUnit( std::vector< Result > const & results, double seconds, std::ostream & out ) {
   pugi::xml_document document;
   pugi::xml_node suites = document.append_child( "testsuites" );
   addCounts( suites, results, seconds );
   pugi::xml_node suite = suites.append_child( "testsuite" );
   addCounts( suite, results, seconds );
   for ( Result const & result : results ) {
      addCase( suite, result );
   }
   document.save( out, "   " );
}

}  // namespace Testing
