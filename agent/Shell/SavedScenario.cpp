#include <Shell/SavedScenario.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>

#include <yaml-cpp/yaml.h>

#include <Scenario/File.h>
#include <Scenario/Survey.h>
#include <Shell/Session.h>
#include <Story/InputError.h>

#include <fcntl.h>
#include <unistd.h>

namespace Shell {

namespace {

namespace fs = std::filesystem;

struct Document {
   fs::path file;
   YAML::Node node;
};

// A step, and the folder that its paths begin in.
struct PlacedStep {
   YAML::Node node;
   fs::path folder;
};

Document documentOf( fs::path const & file, std::string const & text ) {
   return { file, YAML::Load( Scenario::withoutMark( text ) ) };
}

// The whole scenario, and the one that is based on it.
struct Documents {
   Document whole;
   std::optional< Document > twin;

   std::string variant() const {
      bool const isOther = twin && twin->node[ "variant" ];
      return ( isOther ? twin->node[ "variant" ] : whole.node[ "switch" ][ "variant" ] ).Scalar();
   }
};

Documents documentsOf( Original const & original ) {
   Document first = documentOf( original.file, original.text );
   if ( !first.node[ "based-on" ] ) {
      return { std::move( first ), std::nullopt };
   }
   fs::path const base =
      ( original.file.parent_path() / first.node[ "based-on" ].Scalar() ).lexically_normal();
   return { documentOf( base, Scenario::textIn( base ) ), std::move( first ) };
}

// The steps of the document for the variant.
void addSteps( Document const & document, std::string const & variant,
               std::vector< PlacedStep > & steps ) {
   for ( YAML::Node const & step : document.node[ "steps" ] ) {
      YAML::Node const onlyOn = step[ "only-on" ];
      if ( !onlyOn || onlyOn.Scalar() == variant ) {
         steps.push_back( { step, document.file.parent_path() } );
      }
   }
}

// The path of `target` from the folder of `file`.
std::string pathFrom( fs::path const & file, fs::path const & target ) {
   fs::path const folder = fs::absolute( file ).parent_path();
   fs::path const path = fs::relative( fs::absolute( target ), folder );
   return path.empty() ? fs::absolute( target ).string() : path.string();
}

YAML::Node movedTo( fs::path const & file, PlacedStep const & step ) {
   YAML::Node node = YAML::Clone( step.node );
   if ( node[ "frames" ] ) {
      node[ "frames" ][ "capture" ] =
         pathFrom( file, step.folder / node[ "frames" ][ "capture" ].Scalar() );
   }
   return node;
}

// The steps that were carried out, in their order.
std::vector< PlacedStep > inOrder( std::vector< PlacedStep > const & own,
                                   std::vector< Done > const & done ) {
   std::vector< PlacedStep > steps;
   auto next = own.begin();
   for ( Done const & step : done ) {
      steps.push_back( step.isTyped() ? PlacedStep{ YAML::Load( step.text ), {} } : *next++ );
   }
   return steps;
}

YAML::Node listOf( fs::path const & file, std::vector< PlacedStep > const & steps,
                   std::size_t first ) {
   YAML::Node list( YAML::NodeType::Sequence );
   for ( std::size_t n = first; n < steps.size(); ++n ) {
      list.push_back( movedTo( file, steps[ n ] ) );
   }
   return list;
}

// The name of a scenario in that file: its folder's, where the file has the usual name.
std::string nameFor( fs::path const & file ) {
   fs::path const folder = fs::absolute( file ).lexically_normal().parent_path().filename();
   bool const isUsual = file.filename() == "scenario.yaml" && !folder.empty();
   return isUsual ? folder.string() : file.stem().string();
}

YAML::Node basedOn( Documents const & documents, fs::path const & file, YAML::Node const & steps ) {
   YAML::Node text;
   text[ "scenario" ] = nameFor( file );
   text[ "based-on" ] = pathFrom( file, documents.whole.file );
   text[ "variant" ] = documents.variant();
   if ( steps.size() != 0 ) {
      text[ "steps" ] = steps;
   }
   return text;
}

YAML::Node wholeText( Documents const & documents, fs::path const & file,
                      YAML::Node const & steps ) {
   YAML::Node const & whole = documents.whole.node;
   fs::path const features = whole[ "features" ] ? whole[ "features" ].Scalar() : "";
   YAML::Node text = YAML::Clone( whole );
   text[ "scenario" ] = nameFor( file );
   text[ "switch" ][ "variant" ] = documents.variant();
   text[ "features" ] = pathFrom( file, documents.whole.file.parent_path() / features );
   if ( documents.twin && documents.twin->node[ "description" ] ) {
      text[ "description" ] = documents.twin->node[ "description" ].Scalar();
   }
   text[ "steps" ] = steps;
   return text;
}

// Unlike the library's own way, this keeps the quotes of a text that looks like a number.
void emit( YAML::Emitter & out, YAML::Node const & node ) {
   auto const layout = node.Style() == YAML::EmitterStyle::Flow ? YAML::Flow : YAML::Block;
   switch ( node.Type() ) {
   case YAML::NodeType::Map:
      out << layout << YAML::BeginMap;
      for ( auto const & member : node ) {
         out << YAML::Key;
         emit( out, member.first );
         out << YAML::Value;
         emit( out, member.second );
      }
      out << YAML::EndMap;
      break;
   case YAML::NodeType::Sequence:
      out << layout << YAML::BeginSeq;
      for ( YAML::Node const & element : node ) {
         emit( out, element );
      }
      out << YAML::EndSeq;
      break;
   case YAML::NodeType::Scalar:
      if ( node.Tag() == "!" ) {
         out << YAML::DoubleQuoted;
      }
      out << node.Scalar();
      break;
   default: out << YAML::Null;
   }
}

std::string textOf( YAML::Node const & node ) {
   YAML::Emitter out;
   emit( out, node );
   return std::string( out.c_str() ) + '\n';
}

}  // namespace

std::string savedText( Original const & original, std::vector< Done > const & done,
                       fs::path const & file ) {
   Documents const documents = documentsOf( original );
   std::vector< PlacedStep > own;
   addSteps( documents.whole, documents.variant(), own );
   std::size_t const base = own.size();
   if ( documents.twin ) {
      addSteps( *documents.twin, documents.variant(), own );
   }
   auto const firstTyped =
      std::find_if( done.begin(), done.end(), []( Done const & step ) { return step.isTyped(); } );
   bool const isBaseDone = static_cast< std::size_t >( firstTyped - done.begin() ) >= base;
   auto const steps = inOrder( own, done );
   std::error_code error;
   bool const canName = fs::is_regular_file( documents.whole.file, error ) &&
                        !fs::equivalent( documents.whole.file, file, error );
   return textOf( isBaseDone && canName ? basedOn( documents, file, listOf( file, steps, base ) )
                                        : wholeText( documents, file, listOf( file, steps, 0 ) ) );
}

// --- The file

namespace {

constexpr int kUsualRights = 0666;  // less those that the user takes from new files

[[noreturn]] void cannotWrite( fs::path const & file, int error ) {
   throw Story::InputError( file.string() + " cannot be written (" +
                            std::generic_category().message( error ) +
                            "); name a file in a folder that takes files" );
}

// Writes the text and puts it onto the disk; the error's number, or 0.
int write( fs::path const & file, std::string const & text ) {
   int const fd = open( file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kUsualRights );
   if ( fd < 0 ) {
      return errno;
   }
   std::size_t written = 0;
   int error = 0;
   while ( written < text.size() && error == 0 ) {
      ssize_t const count = ::write( fd, text.data() + written, text.size() - written );
      written += count > 0 ? static_cast< std::size_t >( count ) : 0;
      error = count < 0 && errno != EINTR ? errno : 0;
   }
   error = error == 0 && fsync( fd ) != 0 ? errno : error;
   close( fd );
   return error;
}

}  // namespace

void writeWhole( fs::path const & file, std::string const & text ) {
   std::error_code error;
   if ( fs::is_directory( file, error ) ) {
      cannotWrite( file, EISDIR );
   }
   fs::path const unfinished =
      file.parent_path() / ( "." + file.filename().string() + "." + std::to_string( getpid() ) );
   int number = write( unfinished, text );
   if ( number == 0 && rename( unfinished.c_str(), file.c_str() ) != 0 ) {
      number = errno;
   }
   if ( number != 0 ) {
      if ( number != EEXIST ) {
         unlink( unfinished.c_str() );
      }
      cannotWrite( file, number );
   }
}

}  // namespace Shell
