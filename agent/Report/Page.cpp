#include <Report/Page.h>

#include <Report/Data.h>

namespace Report {

namespace {

// A tag that names a file, and the tag around the content of that file.
struct Inlined {
   std::string_view opening;  // up to the name
   std::string_view closing;  // from the name on
   std::string_view tag;
};

constexpr Inlined kStyle{ "<link rel=\"stylesheet\" href=\"", "\">", "style" };
constexpr Inlined kScript{ "<script src=\"", "\"></script>", "script" };

// Puts the contents of the files in place of the tags that name them.
std::string withFiles( std::string_view page, Inlined const & what ) {
   std::string text;
   for ( ;; ) {
      std::size_t const begin = page.find( what.opening );
      text += page.substr( 0, begin );
      if ( begin == std::string_view::npos ) {
         return text;
      }
      page.remove_prefix( begin + what.opening.size() );
      std::size_t const end = page.find( what.closing );
      text.append( "<" ).append( what.tag ).append( ">\n" );
      text += pageFile( page.substr( 0, end ) );
      text.append( "</" ).append( what.tag ).append( ">" );
      page.remove_prefix( end + what.closing.size() );
   }
}

}  // namespace

std::string escaped( std::string const & json ) {
   std::string text;
   text.reserve( json.size() );
   for ( char const c : json ) {
      switch ( c ) {
      case '<': text += "\\u003c"; break;
      case '>': text += "\\u003e"; break;
      case '&': text += "\\u0026"; break;
      default: text += c;
      }
   }
   return text;
}

std::string pageOf( Model const & model ) {
   std::string const page = withFiles( withFiles( pageFile( "page.html" ), kStyle ), kScript );
   constexpr std::string_view kData = "<script type=\"application/json\" id=\"data\">";
   std::size_t const place = page.find( kData ) + kData.size();
   std::string const data = escaped(
      dataOf( model ).dump( -1, ' ', false, nlohmann::ordered_json::error_handler_t::replace ) );
   std::string text( kFirstLine );
   text.reserve( text.size() + page.size() + data.size() );
   return text.append( page, 0, place ).append( data ).append( page, place );
}

}  // namespace Report
