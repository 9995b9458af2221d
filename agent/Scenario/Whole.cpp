#include <Scenario/Whole.h>

#include <algorithm>

#include <Scenario/File.h>

namespace Scenario {

namespace fs = std::filesystem;

Whole::Whole( fs::path const & file, std::string const & text, Root const & root )
      : base_{ file, yamlIn( text ) } {
   std::optional< Document > twin;
   if ( Yaml const * const other = base_.content.find( "based-on" ) ) {
      fs::path const base = ( file.parent_path() / other->text ).lexically_normal();
      twin = std::move( base_ );
      base_ = { base, yamlIn( textIn( root.placeOf( base ) ) ) };
      if ( Yaml const * const description = twin->content.find( "description" ) ) {
         description_ = description->text;
      }
   }
   Yaml const * const ownVariant = twin ? twin->content.find( "variant" ) : nullptr;
   variant_ = ( ownVariant ? ownVariant : base_.content.find( "switch" )->find( "variant" ) )->text;
   addSteps( base_ );
   baseSteps_ = steps_.size();
   if ( twin ) {
      addSteps( *twin );
   }
}

void Whole::addSteps( Document const & document ) {
   Yaml const * const steps = document.content.find( "steps" );
   for ( Yaml const & step : steps ? steps->parts : std::vector< Yaml >() ) {
      addStep( step, document.file.parent_path() );
   }
}

void Whole::addStep( Yaml step, fs::path const & folder ) {
   Yaml const * const onlyOn = step.find( "only-on" );
   if ( !onlyOn || onlyOn->text == variant_ ) {
      step.remove( "only-on" );
      steps_.push_back( { std::move( step ), folder } );
   }
}

void Whole::endWith( std::size_t step ) {
   steps_.resize( std::min( step, steps_.size() ) );
   baseSteps_ = std::min( baseSteps_, steps_.size() );
}

void Whole::add( std::string const & step, fs::path const & folder ) {
   addStep( yamlIn( step ), folder );
}

fs::path Whole::features() const {
   Yaml const * const folder = base_.content.find( "features" );
   fs::path const beside = base_.file.parent_path() / ( folder ? folder->text : "" );
   return beside.empty() ? "." : beside;
}

Yaml Whole::document( fs::path const & file, std::vector< PlacedStep > const & steps ) const {
   Yaml text = base_.content;
   text.set( "scenario", yamlText( nameFor( file ) ) );
   text.part( "switch" ).set( "variant", yamlText( variant_ ) );
   text.set( "features", yamlText( pathFrom( file, features() ) ) );
   if ( description_ ) {
      text.set( "description", yamlText( *description_ ) );
   }
   text.set( "steps", listOf( file, steps ) );
   return text;
}

std::string pathFrom( fs::path const & file, fs::path const & target ) {
   fs::path const folder = fs::absolute( file ).parent_path();
   fs::path const path = fs::relative( fs::absolute( target ), folder );
   return path.empty() ? fs::absolute( target ).string() : path.string();
}

Yaml listOf( fs::path const & file, std::vector< PlacedStep > const & steps ) {
   Yaml list = yamlList();
   for ( PlacedStep const & placed : steps ) {
      Yaml step = placed.step;
      if ( step.find( "frames" ) ) {
         Yaml & capture = step.part( "frames" ).part( "capture" );
         capture.text = pathFrom( file, placed.folder / capture.text );
      }
      list.add( std::move( step ) );
   }
   return list;
}

std::string nameFor( fs::path const & file ) {
   fs::path const folder = fs::absolute( file ).lexically_normal().parent_path().filename();
   bool const isUsual = file.filename() == "scenario.yaml" && !folder.empty();
   return isUsual ? folder.string() : file.stem().string();
}

Yaml basedOn( Whole const & whole, fs::path const & file, Yaml const & steps ) {
   Yaml text = yamlMapping( { { "scenario", yamlText( nameFor( file ) ) },
                              { "based-on", yamlText( pathFrom( file, whole.base() ) ) },
                              { "variant", yamlText( whole.variant() ) } } );
   if ( !steps.parts.empty() ) {
      text.set( "steps", steps );
   }
   return text;
}

}  // namespace Scenario
