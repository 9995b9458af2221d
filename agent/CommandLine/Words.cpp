#include <CommandLine/Words.h>

#include <CLI/CLI.hpp>

namespace CommandLine {

namespace {

template< typename Target >
Word declared( CLI::App & app, std::string const & name, Target & target,
               std::string const & purpose ) {
   return Word( *app.add_option( name, target, purpose ) );
}

}  // namespace

Word const & Word::required() const {
   option_->required();
   return *this;
}

Word const & Word::type( std::string const & name ) const {
   option_->type_name( name );
   return *this;
}

Word const & Word::check(
   std::function< std::string( std::string const & ) > const & problemOf ) const {
   option_->check( problemOf );
   return *this;
}

Word const & Word::range( U32 least, U32 most ) const {
   option_->check( CLI::Range( least, most ) );
   return *this;
}

Word const & Word::repeatable() const {
   option_->take_all()->expected( 1 );
   return *this;
}

Word const & Word::count( int least, int most ) const {
   option_->expected( least, most );
   return *this;
}

Word const & Word::usual() const {
   option_->capture_default_str();
   return *this;
}

Word const & Word::excludes( std::string const & other ) const {
   option_->excludes( other );
   return *this;
}

Word const & Word::excludes( Word const & other ) const {
   option_->excludes( other.option_ );
   return *this;
}

Word const & Word::needs( Word const & other ) const {
   option_->needs( other.option_ );
   return *this;
}

Word value( CLI::App & app, std::string const & name, std::string & target,
            std::string const & purpose ) {
   return declared( app, name, target, purpose );
}

Word value( CLI::App & app, std::string const & name, std::filesystem::path & target,
            std::string const & purpose ) {
   return declared( app, name, target, purpose );
}

Word value( CLI::App & app, std::string const & name, std::size_t & target,
            std::string const & purpose ) {
   return declared( app, name, target, purpose );
}

Word value( CLI::App & app, std::string const & name, std::optional< U32 > & target,
            std::string const & purpose ) {
   return declared( app, name, target, purpose );
}

Word value( CLI::App & app, std::string const & name, std::vector< std::string > & target,
            std::string const & purpose ) {
   return declared( app, name, target, purpose );
}

Word value( CLI::App & app, std::string const & name, std::vector< std::filesystem::path > & target,
            std::string const & purpose ) {
   return declared( app, name, target, purpose );
}

Word flag( CLI::App & app, std::string const & name, bool & target, std::string const & purpose ) {
   return Word( *app.add_flag( name, target, purpose ) );
}

void refuseValue( std::string const & word, std::string const & why ) {
   throw CLI::ValidationError( word, why );
}

}  // namespace CommandLine
