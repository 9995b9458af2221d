#include <Record/Reader.h>

#include <fmt/format.h>

#include <Record/Ends.h>
#include <Story/Wording.h>

namespace Record {

Reader::Reader( std::filesystem::path file ) : file_( std::move( file ) ) {}

std::optional< Item > Reader::next() {
   if ( !damage_.empty() || ( left_.empty() && !blockNew() ) ) {
      return std::nullopt;
   }
   try {
      Item item = takeItem( left_ );
      note( item );
      return item;
   } catch ( std::runtime_error const & error ) {
      damage_ = error.what();
      return std::nullopt;
   }
}

std::optional< Story::Event > Reader::nextEvent() {
   while ( auto item = next() ) {
      if ( auto * const event = std::get_if< Story::Event >( &*item ) ) {
         return std::move( *event );
      }
   }
   return std::nullopt;
}

bool Reader::blockNew() {
   auto block = file_.next();
   if ( block ) {
      block_ = std::move( *block );
      left_ = block_;
   }
   return block.has_value();
}

void Reader::note( Item const & item ) {
   auto const * const event = std::get_if< Story::Event >( &item );
   if ( !event ) {
      return;
   }
   if ( auto const * const begins = std::get_if< Story::StepBegins >( event ) ) {
      begun_ = *begins;
   } else if ( std::holds_alternative< Story::StepEnds >( *event ) ) {
      step_ = begun_;
   }
   isComplete_ = isEnd( *event ) && !std::holds_alternative< Story::Interrupted >( *event );
}

std::string Reader::damageText() const {
   std::string const & damage = damage_.empty() ? file_.damage() : damage_;
   return damage.empty() ? "" : fmt::format( "; byte {} of the file: {}", file_.offset(), damage );
}

std::string Reader::cutText() const {
   return fmt::format( "after {}{}", nameOf( step_ ), damageText() );
}

}  // namespace Record
