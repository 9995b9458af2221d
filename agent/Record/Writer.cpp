#include <Record/Writer.h>

#include <Record/Ends.h>

namespace Record {

Writer::Writer( std::filesystem::path file, Setup const & setup ) : file_( std::move( file ) ) {
   put( Item( setup ) );
}

void Writer::add( FilePart part ) {
   put( Item( std::move( part ) ) );
}

void Writer::inputsEnd() {
   put( Item( InputsEnd() ) );
   endBlock();
}

void Writer::onEvent( Story::Event const & event ) {
   put( event );
   if ( std::holds_alternative< Story::StepEnds >( event ) || isEnd( event ) ) {
      endBlock();
   }
}

template< typename What > void Writer::put( What const & what ) {
   write( block_, what );
   if ( block_.size() >= kBlock ) {
      endBlock();
   }
}

void Writer::endBlock() {
   if ( !block_.empty() ) {
      file_.add( block_ );
      block_.clear();
   }
}

}  // namespace Record
